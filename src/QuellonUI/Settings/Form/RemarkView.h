#pragma once

#include "QuellonCore/Presentation/FormControls.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/Symbol.h"

#include <QWidget>

#include <optional>

namespace quellon {

/// A remark with a symbol before it; not there without one.
class RemarkView final : public QWidget {
    Q_OBJECT
public:
    explicit RemarkView(Tint tint, QWidget* parent = nullptr);

    void setModel(const std::optional<FormRemark>& model);

private:
    Tint tint_;
    SymbolLabel* symbol_;
    Paragraph* text_;
};

} // namespace quellon
