// How an export goes, and what came of it.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/labels.h"
#include "ui/controls/panel_shadow.h"
#include "ui/paced.h"
#include "ui/shortcuts.h"

#include <QVBoxLayout>
#include <QWidget>
#include <functional>

namespace flowtide {

class Button;

/// Floats below the button that begins exports. Opens by itself when an export begins and when it ends; closed, it
/// leaves the export alone.
class ExportPanel final : public QWidget {
    Q_OBJECT

public:
    enum class State { nothing, codecQuestion, exporting, verifying, verified, failed, cancelled };

    ExportPanel(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent = nullptr);

    State state() const { return state_; }
    /// Says that the clip's codec cannot be written, and calls back when the user wants the other one.
    void askAboutCodec(std::function<void()> onAccepted);
    /// Shows the export that runs.
    void reveal();
    /// Closes it; false when it is not open.
    bool dismiss();

    /// Called when its size has changed: its right end stays where it is.
    std::function<void()> onResized;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    State wantedState() const;
    void refresh();
    void show(State state);
    void refreshProgress();
    QWidget* makeHead(const QString& title, const QString& icon, QColor color);
    void makeRunning(bool isVerifying);
    void makeReport(const ExportEnd& end);
    void makeFailure(const ExportEnd& end);
    void makeCodecQuestion();
    void addSentence(const QString& sentence, QColor color);
    QHBoxLayout* addButtons(int gap);
    void addAgain(QHBoxLayout& buttons);

    FlowtideViewModel& model_;
    std::function<void(Command)> perform_;
    std::function<void()> onCodecAccepted_;
    State state_ = State::nothing;
    QWidget* content_ = nullptr; ///< of the present state
    QVBoxLayout* rows_ = nullptr;
    LineLabel* share_ = nullptr;
    LineLabel* frames_ = nullptr;
    LineLabel* timeLeft_ = nullptr;
    ProgressBar* bar_ = nullptr;
    Button* again_ = nullptr;
    std::shared_ptr<const ImportedClip> asked_; ///< the clip that is exported, or that a question is about
    Paced progress_{[this] { refreshProgress(); }};
    PanelShadow* shadow_;
    Subscription changes_;
};

} // namespace flowtide
