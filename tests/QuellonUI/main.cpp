#include "QuellonUI/Kit/Accessibility.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Needs no display; a platform that the caller names is used all the same.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication application{argc, argv};
    QApplication::setStyle(QStringLiteral("Fusion"));
    quellon::Accessibility::install();
    return RUN_ALL_TESTS();
}
