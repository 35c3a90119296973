// Two fields side by side, each below its label.
#pragma once

#include "ui/controls/field.h"
#include "ui/controls/labels.h"

#include <QString>
#include <QWidget>

namespace flowtide {

/// Has a line below the fields for the sentence about a value that is refused.
class FieldPair final : public QWidget {
    Q_OBJECT

public:
    static constexpr int fieldsHeight = 48;
    static constexpr int sentenceHeight = 16;

    /// The fields belong to it from then on; their onRefused is its own.
    FieldPair(const QString& leftLabel, Field* left, const QString& rightLabel, Field* right,
              QWidget* parent = nullptr);

    QSize sizeHint() const override { return {232, fieldsHeight + sentenceHeight}; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    LineLabel* leftLabel_;
    LineLabel* rightLabel_;
    LineLabel* sentence_;
    Field* left_;
    Field* right_;
};

} // namespace flowtide
