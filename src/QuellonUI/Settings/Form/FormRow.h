#pragma once

#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/TextLabel.h"

#include <QWidget>

#include <optional>
#include <string>

class QHBoxLayout;
class QVBoxLayout;

namespace quellon {

/// Shows the text; without one, nothing.
void setOptional(Paragraph& paragraph, const std::optional<std::string>& text);

/// A line of a form: its name on the left, its controls on the right, and what there is to say below.
class FormRow final : public QWidget {
    Q_OBJECT
public:
    explicit FormRow(QWidget* parent = nullptr);

    void setLabel(const QString& label);
    /// Puts a control to the right of those that are there; it becomes a child.
    void addControl(QWidget& control);
    /// Puts something below, as wide as the row.
    void addBelow(QWidget& widget);

private:
    TextLabel* label_;
    QHBoxLayout* line_;
    QVBoxLayout* column_;
};

/// Rows on a card, with fine lines between those that are there.
class FormCard final : public QWidget {
    Q_OBJECT
public:
    explicit FormCard(QWidget* parent = nullptr);

    /// A heading above the rows, in small capitals.
    void setHeading(const QString& heading);
    void addRow(QWidget& row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Card* card_;
    QVBoxLayout* column_;
    bool hasHeading_ = false;
};

} // namespace quellon
