// The tips that explain a control.
#pragma once

#include <QObject>
#include <QString>

namespace flowtide {

/// Shows the tips of all widgets in the window's type, in lines of at most 320 pixels: the toolkit breaks no plain
/// text.
class Tips final : public QObject {
    Q_OBJECT

public:
    Tips();
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// A text in lines that fit.
    static QString broken(const QString& text);
};

} // namespace flowtide
