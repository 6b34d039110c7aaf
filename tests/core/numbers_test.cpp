#include "core/numbers.h"

#include "core/number_entry.h"

#include <cmath>
#include <limits>
#include <random>

namespace hyetex {
namespace {

TEST(Numbers, ReadsTheLongestLeadingNumberAndNothingElse) {
  using Case = std::pair<const char*, double>;
  for (const auto& [text, value] :
       {Case("12.5 mm", 12.5), Case("1-Acceptable", 1), Case("3 - Unreliable", 3), Case(" \t7", 7),
        Case("+7", 7), Case("-7.25x", -7.25), Case(".5", 0.5), Case("-.5", -0.5), Case("5.", 5),
        Case("1.2.3", 1.2), Case("1,5", 1), Case("2e3", 2000), Case("2E-2,", 0.02), Case("2e", 2),
        Case("2e+", 2), Case("0005.500", 5.5), Case("1e308", 1e308)})
    EXPECT_EQ(LeadingNumber(text), value) << text;
  for (const char* none : {"", "abc", "+-5", "-+5", "--5", "+", "- 5", ".", "-.", "inf", "-infinity", "NaN",
                           "nan(1)", "1e999", "-1e999", "1e-999", "0x1F", "\xA0 5"})
    EXPECT_EQ(LeadingNumber(none), 0) << none;
}

TEST(Numbers, TakeOfTypedTextsOnlyWholeNumbers) {
  using Case = std::pair<const char*, double>;
  for (const auto& [text, value] : {Case("12,5", 12.5), Case(" -0,5 ", -0.5), Case("+7", 7), Case(".5", 0.5),
                                    Case(",5", 0.5), Case("5,", 5), Case("2e3", 2000)})
    EXPECT_EQ(TypedNumber(text), value) << text;
  for (const char* none : {"", " ", "12.5mm", "1,2,3", "1.234,5", "1 2", "--5", "+-5", "-", ",", "2e", "inf",
                           "nan", "1e999", "1e39", "0x1F"})
    EXPECT_EQ(TypedNumber(none), std::nullopt) << none;
  EXPECT_EQ(StepNumber("1,5", 0.1), "1.6");

  EXPECT_EQ(CheckNumber("-1", DepthEntry), std::nullopt) << "the unknown depth";
  EXPECT_EQ(CheckNumber(" ", DepthEntry), std::nullopt);
  EXPECT_EQ(CheckNumber("-0,5", DepthEntry), "A depth must be no less than 0.");
  EXPECT_EQ(CheckNumber("12.5 mm", DepthEntry), "\"12.5 mm\" is no number. Type a number alone, as 2.5.");
}

TEST(Numbers, NarrowReadingsRefuseWhatDoesNotFit) {
  EXPECT_EQ(LeadingFloat("3e38"), 3e38F);
  for (const char* large : {"3.5e38", "-1e300"}) EXPECT_EQ(LeadingFloat(large), 0);
  EXPECT_EQ(LeadingInt16("32767.4"), 32767);
  EXPECT_EQ(LeadingInt16("-32768"), -32768);
  EXPECT_EQ(LeadingInt16("2.5"), 2);
  for (const char* large : {"32768", "70000", "-1e9"}) EXPECT_EQ(LeadingInt16(large), 0);
  const double values[] = {1e9, -1e9, NAN, 2.5, -3.5};
  const int rounded[] = {32767, -32768, 0, 2, -4};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(RoundToInt16(values[i]), rounded[i]);
}

TEST(Numbers, RoundsTiesToTheEvenDigitAndAllElseToNearest) {
  using Case = std::tuple<double, int, const char*>;
  for (const auto& [value, decimals, text] :
       {Case(12.50, 2, "12.5"), Case(3.00, 2, "3"), Case(0.125, 2, "0.12"), Case(0.375, 2, "0.38"),
        Case(2.5, 0, "2"), Case(3.5, 0, "4"), Case(-2.5, 0, "-2"), Case(0.25, 1, "0.2"), Case(0.75, 1, "0.8"),
        Case(2.675, 2, "2.67"), Case(1.005, 2, "1"), Case(0.1251, 2, "0.13"), Case(-0.004, 2, "0"),
        Case(99.995, 2, "100"), Case(120, 0, "120"), Case(0.1234565, 6, "0.123456"),
        Case(1e15 + 0.5, 0, "1000000000000000"), Case(-0.15, 1, "-0.1")}) {
    EXPECT_EQ(RoundedText(value, decimals), text) << value;
    EXPECT_EQ(Round(value, decimals), LeadingNumber(text)) << value;
  }
  EXPECT_FALSE(std::signbit(Round(-0.001, 2)));
  for (const double none : {HUGE_VAL, -HUGE_VAL, double{NAN}}) {
    EXPECT_EQ(Round(none, 2), 0);
    EXPECT_EQ(RoundedText(none, 2), "0");
    EXPECT_EQ(ShortText(none), "0");
    EXPECT_EQ(ExactText(none), "0");
  }
}

TEST(Numbers, ShortTextHasSevenDigitsForFloatsAndNeverAnExponent) {
  using Case = std::pair<float, const char*>;
  for (const auto& [value, text] :
       {Case(0.0F, "0"), Case(-0.0F, "0"), Case(0.1F, "0.1"), Case(-1.0F, "-1"), Case(1.0F / 3, "0.3333333"),
        Case(2.0F / 3, "0.6666667"), Case(1234567.0F, "1234567"), Case(16777217.0F, "16777220"),
        Case(0.0001F, "0.0001"), Case(1e-10F, "0.0000000001"), Case(1e10F, "10000000000"),
        Case(-1000.0F, "-1000"), Case(0.99999994F, "0.9999999")})
    EXPECT_EQ(ShortText(value), text);
  EXPECT_EQ(ShortText(std::numeric_limits<float>::max()), "3402823" + std::string(32, '0'));
  EXPECT_EQ(ShortText(1e300), "1" + std::string(300, '0'));
  EXPECT_EQ(ShortText(-5e-324), "-0." + std::string(323, '0') + "494065645841247");
  EXPECT_EQ(ShortText(0.1 + 0.2), "0.3");
}

TEST(Numbers, ExactTextReadsBackTheSameAndShortTextNearly) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    const double value = std::ldexp(std::uniform_real_distribution(-1.0, 1.0)(random),
                                    std::uniform_int_distribution(-120, 120)(random));
    const auto narrow = static_cast<float>(value);
    ASSERT_EQ(LeadingNumber(ExactText(value)), value);
    ASSERT_EQ(LeadingFloat(ExactText(narrow)), narrow);
    ASSERT_NEAR(LeadingNumber(ShortText(value)), value, std::abs(value) * 1e-14);
    ASSERT_NEAR(LeadingFloat(ShortText(narrow)), narrow, std::abs(narrow) * 1e-6F);
    const double near = std::uniform_real_distribution(-5000.0, 5000.0)(random);
    ASSERT_LE(std::abs(Round(near, 2) - near), 0.005 + 1e-12);
  }
}

TEST(Numbers, PadsTheIntegerPartAndCutsWhatIsTooLong) {
  using Case = std::tuple<double, int, const char*>;
  for (const auto& [value, width, text] : {Case(7, 2, "07"), Case(1998, 4, "1998"), Case(1998, 2, "19"),
                                           Case(7.5, 2, "07.5"), Case(12.5, 2, "12"), Case(0, 3, "000")})
    EXPECT_EQ(PadNumber(value, width), text);
}

TEST(Numbers, TickStepTakesTheFirstLimitNotBelow) {
  const float limits[] = {0.01F, 0.075F, 0.125F, 0.4F, 0.8F, 2, 7, 15, 35, 80, 150, 250, 350, 450};
  const float steps[] = {0.005F, 0.05F, 0.1F, 0.25F, 0.5F, 1, 5, 10, 20, 50, 100, 200, 300, 400, 500};
  for (std::size_t i = 0; i < std::size(limits); ++i) {
    EXPECT_EQ(TickStep(limits[i]), steps[i]);
    EXPECT_EQ(TickStep(std::nextafter(limits[i], 1000.0F)), steps[i + 1]);
  }
  EXPECT_EQ(TickStep(-3), 0.005F);
  EXPECT_EQ(TickStep(1e9F), 500);
}

}  // namespace
}  // namespace hyetex
