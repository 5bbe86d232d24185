// The least that a desktop program of this toolkit can be: an item in the tray with a menu, and no window. What it
// takes is what every such program takes.

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv)
{
    const QApplication application{argc, argv};
    QApplication::setQuitOnLastWindowClosed(false);
    constexpr int side = 22;
    QPixmap square{side, side};
    square.fill(Qt::darkGreen);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), [] { QApplication::quit(); });
    QSystemTrayIcon item{QIcon{square}};
    item.setContextMenu(&menu);
    item.show();
    return QApplication::exec();
}
