// A project whose clip is not where it was.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/buttons.h"
#include "ui/controls/labels.h"
#include "ui/panes/inspector_section.h"

#include <QWidget>
#include <filesystem>
#include <functional>

namespace flowtide {

class RelinkView final : public QWidget {
    Q_OBJECT

public:
    explicit RelinkView(FlowtideViewModel& model, QWidget* parent = nullptr);

    /// The user wants to choose a file.
    std::function<void()> onLocate;
    /// Which file was chosen last.
    void setChosen(const std::filesystem::path& file);
    /// Why that one is not the clip.
    void showRefusal(const QString& sentence);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Card;
    class Refusal;
    void refresh();
    void place();

    FlowtideViewModel& model_;
    Card* card_;
    ValueRow* clip_;
    ValueRow* folder_;
    ValueRow* duration_;
    ValueRow* saved_;
    Refusal* refusal_;
    QString chosen_;
    std::optional<Uuid> shown_; ///< the project
    Subscription changes_;
};

} // namespace flowtide
