#include "QuellonUI/Settings/Form/ChoiceBox.h"

#include "QuellonUI/Kit/Appearance.h"
#include "QuellonUI/Theme.h"

#include <QStyle>
#include <QStyleOptionComboBox>
#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(ChoiceBox, hasRoomForItsWidestTitle)
{
    Appearance::apply(false);
    const char* const cases[] = {"Ask me", "Light — mail, docs, browsing", "暂停（可恢复）", "（）", "🐌 slow"};
    for (const char* const each : cases) {
        SCOPED_TRACE(each);
        FormChoice choice;
        choice.options = {{each, {}}};
        choice.selected = 0;
        ChoiceBox box;
        box.setModel(choice);
        for (const QSize& size : {box.sizeHint(), box.minimumSizeHint()}) {
            QStyleOptionComboBox option;
            option.initFrom(&box);
            option.rect = QRect{QPoint{}, size};
            const QRect room =
                box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
            EXPECT_GE(room.width() - 2, box.fontMetrics().horizontalAdvance(box.currentText()));
        }
    }
}

} // namespace
} // namespace quellon
