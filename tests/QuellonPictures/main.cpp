#include "Studio.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    quellon::Studio::prepare(1.0);
    testing::InitGoogleTest(&argc, argv);
    QApplication application{argc, argv};
    quellon::Studio::furnish();
    return RUN_ALL_TESTS();
}
