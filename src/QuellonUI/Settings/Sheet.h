#pragma once

#include <QPointer>
#include <QWidget>

namespace quellon {

/// Something that is to be seen to before its window goes on: a card in the middle of the window, with a shade over the
/// rest. Not a window of its own, and nothing waits for it. While it is there the keyboard's focus stays inside; when
/// it goes, the focus goes back to where it was.
class Sheet final : public QWidget {
    Q_OBJECT
public:
    /// `content` becomes a child. `window` is what is covered.
    Sheet(QWidget& window, QWidget& content);

    /// Comes up, with the focus on `first`, which shows that it has it when the focus was shown before; stays as it is
    /// when it is up.
    void present(QWidget& first);
    void dismiss();
    [[nodiscard]] bool isPresented() const { return !isHidden(); }

Q_SIGNALS:
    /// Escape was pressed. Whether that ends the sheet is the receiver's business.
    void escaped();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget& content_;
    QPointer<QWidget> former_; ///< What had the focus before.

    /// Fits the card to what it holds now.
    void fit();
};

} // namespace quellon
