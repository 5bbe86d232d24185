#pragma once

#include <QLineEdit>

namespace quellon {

/// A line of text that belongs to a model. What the user types is reported at once; the end of it when Enter is pressed
/// or the field is left. Enter goes no further.
class FieldEdit final : public QLineEdit {
    Q_OBJECT
public:
    explicit FieldEdit(QWidget* parent = nullptr);

    /// Shows this text, unless it stands there already or the user has typed since the model got it; the cursor stays
    /// where it is as far as it can.
    void setModelText(const QString& text);
    /// A frame in red, for a text that is refused.
    void setRefused(bool refused);
    /// Reports the end of what was typed, if anything was typed since it was last reported.
    void finish();

Q_SIGNALS:
    void typed(const QString& text);
    void finished();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString modelText_;
    bool showing_ = false; ///< The text that changes now is the model's.
    bool touched_ = false;
    bool refused_ = false;

    void report(const QString& text);
};

} // namespace quellon
