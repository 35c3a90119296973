// A sheet with a title, sentences and a button that ends it, perhaps a second one that does what it asks about.
#pragma once

#include "ui/controls/buttons.h"

#include <QHBoxLayout>
#include <QString>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>
#include <optional>

namespace flowtide {

/// The focus goes to its button.
class MessageSheet : public QWidget {
    Q_OBJECT

public:
    explicit MessageSheet(QWidget* parent = nullptr);

    /// What the user is asked about.
    struct Question {
        QString action; ///< what is done
        std::function<void()> perform;
        QString decline; ///< in place of OK
    };
    struct Content {
        QString icon; ///< in the color of what needs the user; may be empty
        QString title;
        QStringList paragraphs;
        std::optional<Question> question;
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
    QHBoxLayout* buttons_;
    Button* action_ = nullptr; ///< while something is asked
    Button* ok_;
    QString icon_;
};

} // namespace flowtide
