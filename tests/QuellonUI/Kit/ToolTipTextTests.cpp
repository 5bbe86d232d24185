#include "QuellonUI/Kit/ToolTipText.h"

#include <QTextDocument>
#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(ToolTipText, isShownAsItIs)
{
    const char* const cases[] = {
        "plain", "A & B", "<b>bold</b>", "a <i>b", "A & <b>B</b>", "&lt;", "<img src=\"/x.png\">", "1 < 2 > 0", "名字",
    };
    for (const char* const each : cases) {
        SCOPED_TRACE(each);
        const QString text = QString::fromUtf8(each);
        const QString tip = toolTipOf(text);
        QTextDocument document;
        if (Qt::mightBeRichText(tip))
            document.setHtml(tip);
        else
            document.setPlainText(tip);
        EXPECT_EQ(document.toPlainText(), text);
    }
}

} // namespace
} // namespace quellon
