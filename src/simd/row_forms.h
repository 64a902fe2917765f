// Tables of row functions, each in two forms: the plain one, which is its definition, and a vector
// one that gives the same bytes and is chosen once for the processor at hand.
//
// A table is a struct of pointers to functions and a list of their names:
//
//   struct BlendRows { Lay layNormal; ... };
//   #define QPX_BLEND_ROWS(ROW, Table) ROW(Table, layNormal) ...
//   QPX_DECLARE_ROWS(BlendRows, QPX_BLEND_ROWS)
//
// Functions of these names stand in namespace plain, followed by QPX_DEFINE_PLAIN_FORM, and in the
// headers that a file of the shape of vector_blend_rows.cpp includes once per target.
#pragma once

#include <type_traits>

namespace qpx::simd {

// Whether the host asked for the plain forms by QPX_UsePlainForms. Process-wide, any thread.
bool plainForms();

// The definitions, whatever the host asked for.
template <class Table>
const Table& plainForm();

// The best that this processor runs, whatever the host asked for: what tests and benchmarks
// compare.
template <class Table>
const Table& vectorForm();

// What the host asked for. Any thread; the reference stays good for the life of the process.
template <class Table>
const Table& chosenForm() {
  return plainForms() ? plainForm<Table>() : vectorForm<Table>();
}

}  // namespace qpx::simd

#define QPX_ROW_ENTRY(Table, name) .name = name,  // NOLINT
#define QPX_ROW_DECLARATION(Table, name) \
  std::remove_pointer_t<decltype(Table::name)> name;  // NOLINT

// Within namespace qpx::simd.
#define QPX_DECLARE_ROWS(Table, LIST) \
  template <>                         \
  const Table& plainForm<Table>();    \
  template <>                         \
  const Table& vectorForm<Table>();   \
  namespace plain {                   \
  LIST(QPX_ROW_DECLARATION, Table)    \
  }

#define QPX_DEFINE_PLAIN_FORM(Table, LIST)                        \
  template <>                                                     \
  const Table& plainForm<Table>() {                               \
    using namespace plain;                                        \
    static constexpr Table kTable = {LIST(QPX_ROW_ENTRY, Table)}; \
    return kTable;                                                \
  }
