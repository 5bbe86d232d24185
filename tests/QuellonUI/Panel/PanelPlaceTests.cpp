#include "QuellonUI/Panel/PanelPlace.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(PanelPlace, table)
{
    struct Case {
        const char* name;
        QPoint anchor;
        QSize size;
        QRect freeArea;
        QRect place;
    };
    const QRect below{0, 29, 1280, 771}; // a bar at the top
    const QRect above{0, 0, 1280, 771};  // a bar at the bottom
    const QRect second{1280, 0, 1920, 1080};
    const Case cases[] = {
        {"in the middle of a bar at the top", {640, 14}, {340, 415}, below, {470, 29, 340, 415}},
        {"near the right edge", {1201, 14}, {340, 415}, below, {940, 29, 340, 415}},
        {"near the left edge", {10, 14}, {340, 415}, below, {0, 29, 340, 415}},
        {"exactly as far right as it goes", {1110, 14}, {340, 415}, below, {940, 29, 340, 415}},
        {"one point less", {1109, 14}, {340, 415}, below, {939, 29, 340, 415}},
        {"a bar at the bottom", {1201, 786}, {340, 415}, above, {940, 356, 340, 415}},
        {"just above the middle", {640, 384}, {340, 415}, above, {470, 0, 340, 415}},
        {"in the middle", {640, 385}, {340, 415}, above, {470, 356, 340, 415}},
        {"higher than the area, from the top", {640, 14}, {340, 900}, below, {470, 29, 340, 771}},
        {"higher than the area, from the bottom", {640, 790}, {340, 900}, above, {470, 0, 340, 771}},
        {"exactly as high as the area", {640, 14}, {340, 771}, below, {470, 29, 340, 771}},
        {"a screen at the right", {3190, 1070}, {340, 415}, second, {2860, 665, 340, 415}},
        {"a screen at the left and above",
         {-100, -1000},
         {340, 415},
         {-1920, -1080, 1920, 1080},
         {-340, -1080, 340, 415}},
        {"no wider than the panel", {100, 10}, {340, 415}, {0, 0, 340, 600}, {0, 0, 340, 415}},
        {"narrower than the panel", {100, 10}, {340, 415}, {50, 0, 200, 600}, {50, 0, 340, 415}},
        {"from somewhere else", {5000, -40}, {340, 415}, below, {940, 29, 340, 415}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(panelPlace(c.anchor, c.size, c.freeArea), c.place);
    }
}

} // namespace
} // namespace quellon
