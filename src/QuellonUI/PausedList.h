#pragma once

#include "QuellonCore/Presentation/ControlsModel.h"
#include "QuellonUI/FlatButton.h"
#include "QuellonUI/Kit/TextLabel.h"

#include <cstddef>
#include <string>
#include <vector>

class QVBoxLayout;

namespace quellon {

/// Draws what is paused, the first few of it line by line, and reports what is to be resumed. Not visible while nothing
/// is paused.
class PausedList final : public QWidget {
    Q_OBJECT
public:
    /// How many have a line of their own.
    static constexpr std::size_t mostLines = 4;

    explicit PausedList(QWidget* parent = nullptr);

    /// Returns at once when that is what is shown.
    void setPaused(const std::vector<ControlsModel::Paused>& paused);
    void setTheme(const Theme& theme);

Q_SIGNALS:
    /// The application, by the id of its entry, whose row it was throughout the press.
    void resumed(const std::string& id);
    void allResumed();

private:
    struct Row {
        QWidget* line;
        TextLabel* app;
        TextLabel* since;
        FlatButton* resume;
    };

    std::vector<ControlsModel::Paused> paused_;
    TextLabel* heading_;
    FlatButton* resumeAll_;
    std::vector<Row> rows_; ///< `mostLines` of them.
    TextLabel* more_;

    void addRow(QVBoxLayout& layout);
};

} // namespace quellon
