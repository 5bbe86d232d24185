#include "QuellonUI/Settings/Form/FieldEdit.h"

#include "QuellonUI/Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace quellon {

FieldEdit::FieldEdit(QWidget* parent) : QLineEdit(parent)
{
    setFont(Fonts::body());
    // Not `textEdited`: assistive programs put texts in without a key.
    connect(this, &QLineEdit::textChanged, this, &FieldEdit::report);
    connect(this, &QLineEdit::editingFinished, this, &FieldEdit::finish);
}

void FieldEdit::setModelText(const QString& text)
{
    // A model from before the latest key.
    const bool isLate = touched_ && hasFocus() && text == modelText_;
    modelText_ = text;
    if (isLate || text == this->text()) return;
    const int cursor = cursorPosition();
    const bool all = hasSelectedText() && selectedText() == this->text();
    showing_ = true;
    setText(text);
    showing_ = false;
    setCursorPosition(cursor);
    if (all) selectAll();
}

void FieldEdit::setRefused(bool refused)
{
    if (refused == refused_) return;
    refused_ = refused;
    update();
}

void FieldEdit::finish()
{
    if (!touched_) return;
    touched_ = false;
    Q_EMIT finished();
}

void FieldEdit::report(const QString& text)
{
    if (showing_) return;
    touched_ = true;
    Q_EMIT typed(text);
    if (!hasFocus()) finish();
}

void FieldEdit::keyPressEvent(QKeyEvent* event)
{
    QLineEdit::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) event->accept();
}

void FieldEdit::paintEvent(QPaintEvent* event)
{
    QLineEdit::paintEvent(event);
    if (!refused_) return;
    constexpr double radius = 6.0;
    constexpr double width = 1.5;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen{Theme::of(palette()).bad, width});
    const double inset = width / 2;
    painter.drawRoundedRect(QRectF{rect()}.adjusted(inset, inset, -inset, -inset), radius, radius);
}

} // namespace quellon
