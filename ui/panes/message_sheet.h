// A sheet with a title, sentences and a button that ends it.
#pragma once

#include "ui/controls/buttons.h"

#include <QString>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>

namespace flowtide {

/// The focus goes to its button.
class MessageSheet : public QWidget {
    Q_OBJECT

public:
    explicit MessageSheet(QWidget* parent = nullptr);

    struct Content {
        QString icon; ///< in the color of what needs the user; may be empty
        QString title;
        QStringList paragraphs;
    };
    void setContent(const Content& content);
    std::function<void()> onClose;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    QVBoxLayout* rows_;
    QWidget* words_ = nullptr;
    Button* ok_;
    QString icon_;
};

} // namespace flowtide
