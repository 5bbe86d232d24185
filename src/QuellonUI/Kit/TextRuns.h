#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QFont>
#include <QString>
#include <QWidget>

#include <vector>

class QTextLayout;

namespace quellon {

/// Pieces of text one behind the other, each in a colour of its own, that go on in the next line where there is no
/// room. The whole is the accessible name.
class TextRuns final : public QWidget {
    Q_OBJECT
public:
    struct Run {
        QString text;
        Tint tint = Tint::secondary;
        bool isMedium = false; ///< Heavier than the others.
        bool operator==(const Run&) const = default;
    };

    explicit TextRuns(const QFont& font, QWidget* parent = nullptr);

    /// Shows these, with a blank between them. Returns at once when they are what is shown.
    void setRuns(const std::vector<Run>& runs);
    [[nodiscard]] const std::vector<Run>& runs() const { return runs_; }
    /// All that is shown, as one line.
    [[nodiscard]] QString text() const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<Run> runs_;

    /// Lays the lines out, and gives their height.
    double layOut(QTextLayout& layout, double width) const;
    void colour(QTextLayout& layout) const;
};

} // namespace quellon
