// Several effects in one engine.
#include "properties/effect_run.h"

namespace qpx::testing {
namespace {

// Formats in which one pass loses nothing that the next one could see.
constexpr uint32_t kChainFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32,
                                      QPX_FORMAT_RGBA32};

// A list of effects that all take one format, with records of their own.
struct Chain {
  uint32_t format = 0;
  std::vector<const QPXEffectInfo*> effects;
  std::vector<Record> records;

  std::vector<QPXEffectItem> items() const {
    std::vector<QPXEffectItem> list;
    for (size_t i = 0; i < effects.size(); ++i) {
      list.push_back({effects[i]->id, records[i].data(), static_cast<uint32_t>(records[i].size())});
    }
    return list;
  }
};

std::string nameOf(const Chain& chain) {
  std::string name = formatCase(chain.format).name;
  for (const QPXEffectInfo* effect : chain.effects) name += std::string("_") + effect->name;
  return name;
}

void PrintTo(const Chain& chain, std::ostream* stream) { *stream << nameOf(chain); }

bool chains(const QPXEffectInfo& effect, uint32_t format) {
  return takes(effect, formatCase(format)) && effect.marginRule != QPX_MARGIN_ROTATION &&
         effect.recordSize != static_cast<int32_t>(sizeof(QPXFilterRecord));
}

Chain randomChain(uint64_t seed) {
  Random random(seed);
  Chain chain;
  chain.format = kChainFormats[seed % std::size(kChainFormats)];
  std::vector<const QPXEffectInfo*> usable;
  for (const QPXEffectInfo& effect : builtEffects()) {
    if (chains(effect, chain.format)) usable.push_back(&effect);
  }
  const int32_t length = random.between(2, 5);
  for (int32_t i = 0; i < length && !usable.empty(); ++i) {
    const int32_t last = static_cast<int32_t>(usable.size()) - 1;
    chain.effects.push_back(usable[static_cast<size_t>(random.between(0, last))]);
    chain.records.push_back(makeRecord(*chain.effects.back(), "random", seed));
  }
  return chain;
}

std::vector<Chain> someChains() {
  std::vector<Chain> chains;
  for (uint64_t seed = 1; seed <= 120; ++seed) chains.push_back(randomChain(seed));
  return chains;
}

class Chains : public ::testing::TestWithParam<Chain> {};

TEST_P(Chains, EqualTheirEffectsOneByOne) {
  const Chain& chain = GetParam();
  Picture expected(chain.format, 45, 21, Placement::guarded);
  expected.paint(2);
  const Picture source = expected;
  for (size_t i = 0; i < chain.effects.size(); ++i) {
    const Picture step = expected;
    ASSERT_TRUE(Engine(step, *chain.effects[i], chain.records[i]).run(step, expected));
  }
  const std::vector<QPXEffectItem> items = chain.items();
  const Engine engine(source, items);
  for (const int32_t rows : {21, 1, 4}) {
    const int32_t heights[] = {rows};
    Picture actual = blankLike(source);
    ASSERT_TRUE(engine.run(source, actual, heights));
    ASSERT_TRUE(samePicture(expected, actual)) << "bands of " << rows;
  }
}

std::string caseName(const ::testing::TestParamInfo<Chain>& chain) {
  return std::to_string(chain.index) + "_" + nameOf(chain.param);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Chains, ::testing::ValuesIn(someChains()), caseName);

// A later stage reads the second input in the columns and rows that the first one made.
TEST(ChainWithSecondInput, StaysInsideThePlacedPicture) {
  Picture source(QPX_FORMAT_BGR24, 20, 10, Placement::exact);
  source.paint(1);
  Picture second(QPX_FORMAT_BGR24, 8, 4, Placement::exact);
  second.paint(2);
  const Picture before = blankLike(source);
  Picture after = before;
  const MBitmap in = source.bitmap();
  const MBitmap placed = second.bitmap();
  const MBitmap out = after.bitmap();
  const QPXEffectItem items[] = {{0x1800, nullptr, 0}, {0x1100, nullptr, 0}};
  const QPXEffectList list = {items, 2, 0};
  QPXEngine* engine = nullptr;
  ASSERT_EQ(QPX_OK, QPXCreateIn(&out, &in, &placed, nullptr, &list, &engine));
  QPXBandRect rect = {0, 0, 20, 10, 0, 0, 0, 0};
  EXPECT_EQ(QPX_OK, QPXMultProcessIn(engine, &out, &in, &placed, nullptr, &rect));
  QPXDestroy(engine);
  EXPECT_EQ(8, rect.right);
  EXPECT_EQ(4, rect.bottom);
  EXPECT_TRUE(untouchedOutside(before, after, {0, 0, 8, 4}));
}

}  // namespace
}  // namespace qpx::testing
