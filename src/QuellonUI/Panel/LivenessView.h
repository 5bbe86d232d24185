#pragma once

#include "QuellonCore/Presentation/LivenessRowModel.h"

#include <QWidget>

#include <vector>

class QHBoxLayout;

namespace quellon {

class SymbolLabel;
class TextLabel;

/// The line that shows that the guard works.
class LivenessView final : public QWidget {
    Q_OBJECT
public:
    explicit LivenessView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const LivenessRowModel& model);

private:
    LivenessRowModel model_;
    QHBoxLayout* layout_;
    SymbolLabel* symbol_;
    std::vector<TextLabel*> texts_; ///< As many as were ever needed.
};

} // namespace quellon
