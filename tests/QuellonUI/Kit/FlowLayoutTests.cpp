#include "KitTest.h"

#include "QuellonUI/Kit/FlowLayout.h"

#include <vector>

namespace quellon {
namespace {

/// Three boxes of 50, 60 and 70 points in a row, 20 high, with gaps of 5 and between lines of 3.
class FlowLayoutTest : public KitTest {
protected:
    QWidget area;
    FlowLayout* flow = new FlowLayout{5, 3};
    std::vector<QWidget*> boxes;

    FlowLayoutTest()
    {
        area.setLayout(flow);
        flow->setContentsMargins(2, 1, 4, 6);
        for (const int width : {50, 60, 70}) {
            auto* const box = new QWidget{&area};
            box->setFixedSize(width, 20);
            flow->addWidget(box);
            boxes.push_back(box);
        }
    }
    std::vector<QPoint> places(int width)
    {
        flow->setGeometry({0, 0, width, flow->heightForWidth(width)});
        std::vector<QPoint> result;
        for (const QWidget* const box : boxes) {
            if (!box->isHidden()) result.push_back(box->pos());
        }
        return result;
    }
};

TEST_F(FlowLayoutTest, linesByWidth)
{
    struct Case {
        const char* name;
        int width;
        int height;
        std::vector<QPoint> places;
    };
    const Case cases[] = {
        {"all in one line", 300, 27, {{2, 1}, {57, 1}, {122, 1}}},
        {"just so", 196, 27, {{2, 1}, {57, 1}, {122, 1}}},
        {"the last one goes on", 195, 50, {{2, 1}, {57, 1}, {2, 24}}},
        {"a line for each", 100, 73, {{2, 1}, {2, 24}, {2, 47}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(flow->heightForWidth(c.width), c.height);
        EXPECT_EQ(places(c.width), c.places);
    }
}

TEST_F(FlowLayoutTest, sizes)
{
    EXPECT_EQ(flow->sizeHint(), QSize(196, 27));
    EXPECT_EQ(flow->minimumSize(), QSize(76, 27));
    EXPECT_TRUE(flow->hasHeightForWidth());
    EXPECT_EQ(flow->count(), 3);
    EXPECT_EQ(flow->itemAt(3), nullptr);
    EXPECT_EQ(flow->takeAt(-1), nullptr);
}

TEST_F(FlowLayoutTest, whatIsHiddenTakesNoRoom)
{
    boxes[1]->hide();
    EXPECT_EQ(places(300), (std::vector<QPoint>{{2, 1}, {57, 1}}));
    EXPECT_EQ(flow->sizeHint().width(), 2 + 50 + 5 + 70 + 4);
    boxes[0]->hide();
    boxes[2]->hide();
    EXPECT_EQ(flow->heightForWidth(300), 7);
}

TEST_F(FlowLayoutTest, fromRightToLeft)
{
    area.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(places(300), (std::vector<QPoint>{{246, 1}, {181, 1}, {106, 1}}));
}

} // namespace
} // namespace quellon
