#include "Quellon/LocaleTexts.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(LocaleTexts, dates)
{
    struct Case {
        const char* locale;
        const char* march20;
    };
    constexpr Case cases[] = {
        {"en_US", "Mar 20"},    {"en_GB", "20 Mar"},     {"de_DE", "20. März"},  {"fr_FR", "20 mars"},
        {"es_ES", "20 de mar"}, {"ca_ES", "20 de març"}, {"zh_CN", "3月20日"},   {"ja_JP", "3月20日"},
        {"ko_KR", "3월 20일"},  {"ru_RU", "20 мар."},    {"lv_LV", "20. marts"}, {"C", "Mar 20"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.locale);
        EXPECT_EQ(LocaleTexts::dates(QLocale{QString::fromLatin1(c.locale)}).monthAndDay({2026, 3, 20}), c.march20);
    }
}

TEST(LocaleTexts, everyLocaleHasAMonthAndADay)
{
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        const DateTexts texts = LocaleTexts::dates(locale);
        for (const char* part : {"{month}", "{day}"}) {
            const auto first = texts.pattern.find(part);
            EXPECT_NE(first, std::string::npos) << locale.name().toStdString() << ": " << texts.pattern;
            EXPECT_EQ(texts.pattern.rfind(part), first) << locale.name().toStdString() << ": " << texts.pattern;
        }
    }
}

} // namespace
} // namespace quellon
