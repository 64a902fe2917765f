// What the address sanitizer starts with: memory that can not be had comes back as null, as on a
// phone, and more than a small picture is more than can be had.
extern "C" const char* __asan_default_options();

extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=64";
}
