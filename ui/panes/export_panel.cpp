#include "ui/panes/export_panel.h"

#include "ui/accessible_role.h"
#include "ui/controls/buttons.h"
#include "ui/icons.h"
#include "ui/key_names.h"
#include "ui/panes/export_texts.h"
#include "ui/show_in_folder.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr int panelWidth = 344;
constexpr int padding = 16;
constexpr int headHeight = 24;
constexpr int closeOverhang = 4; ///< of the button's ground beyond its sign
constexpr int nameWidth = 96;
constexpr double signSize = 20;

QString text(const std::string& sentence) {
    return QString::fromUtf8(sentence.data(), static_cast<qsizetype>(sentence.size()));
}

/// A title with its sign.
class Head final : public QWidget {
public:
    Head(QString title, QString icon, QColor color, QWidget* parent)
        : QWidget(parent)
        , title_(std::move(title))
        , icon_(std::move(icon))
        , color_(color) {
        setFixedHeight(headHeight);
        setAccessibleRole(*this, QAccessible::Heading);
        setAccessibleName(title_);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QRectF words = rect();
        if (!icon_.isEmpty()) {
            icons::draw(painter, icon_, QRectF(0, 0, signSize, height()), signSize, color_);
            words.setLeft(signSize + 8);
        }
        theme::drawLine(painter, words, Qt::AlignLeft, theme::Type::title, theme::text, title_);
    }

private:
    QString title_;
    QString icon_;
    QColor color_;
};

class Line final : public QWidget {
public:
    explicit Line(QWidget* parent)
        : QWidget(parent) {
        setFixedHeight(1);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        theme::drawHairline(painter, rect(), theme::Side::top, theme::border);
    }
};

} // namespace

ExportPanel::ExportPanel(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , perform_(std::move(perform)) {
    setFixedWidth(panelWidth);
    setAccessibleRole(*this, QAccessible::Dialog);
    setAccessibleName(tr("Export"));
    hide();
    shadow_ = new PanelShadow(*this, theme::sheetRadius);
    const PropertySet states =
        properties({Property::isExporting, Property::lastExportEnd, Property::clip, Property::exportProgress});
    changes_ = model_.subscribe(states | properties({Property::exportEstimatedRemainingTime}),
                                [this](const PropertySet&) { refresh(); });
}

ExportPanel::State ExportPanel::wantedState() const {
    const ExportJob& job = model_.exporting();
    if (job.isExporting()) return job.exportProgress() >= 1 ? State::verifying : State::exporting;
    if (const auto& end = job.lastExportEnd()) {
        switch (end->kind) {
        case ExportEnd::Kind::verified:
            return State::verified;
        case ExportEnd::Kind::failed:
            return State::failed;
        case ExportEnd::Kind::cancelled:
            return State::cancelled;
        }
    }
    return State::nothing;
}

void ExportPanel::refresh() {
    const State wanted = wantedState();
    if (wanted == State::nothing && state_ == State::codecQuestion) {
        if (model_.clip() != asked_) dismiss();
        return;
    }
    const bool wasRunning = state_ == State::exporting || state_ == State::verifying;
    if (wanted != state_ && wanted != State::nothing && !wasRunning) asked_ = model_.clip();
    if (again_) again_->setEnabled(model_.clip() && model_.clip() == asked_);
    if (wanted == state_) {
        progress_.request();
        return;
    }
    // Closed by the user during an export, it comes back for the end alone.
    const bool isClosed = isHidden() && state_ == State::exporting && wanted == State::verifying;
    state_ = wanted;
    if (!isClosed) show(wanted);
}

void ExportPanel::show(State state) {
    state_ = state;
    if (content_) {
        content_->hide();
        content_->deleteLater();
    }
    content_ = nullptr;
    share_ = frames_ = timeLeft_ = nullptr;
    bar_ = nullptr;
    again_ = nullptr;
    if (state == State::nothing) {
        hide();
        return;
    }
    content_ = new QWidget(this);
    rows_ = new QVBoxLayout(content_);
    rows_->setContentsMargins(padding, padding - 4, padding, padding);
    rows_->setSpacing(0);
    const auto& end = model_.exporting().lastExportEnd();
    switch (state) {
    case State::exporting:
    case State::verifying:
        makeRunning(state == State::verifying);
        break;
    case State::verified:
        makeReport(*end);
        break;
    case State::failed:
        makeFailure(*end);
        break;
    case State::cancelled: {
        rows_->addWidget(makeHead(tr("Export was cancelled."), {}, {}));
        addAgain(*addButtons(12));
        break;
    }
    case State::codecQuestion:
        makeCodecQuestion();
        break;
    case State::nothing:
        break;
    }
    const int height = rows_->heightForWidth(panelWidth);
    const int wanted = height > 0 ? height : rows_->sizeHint().height();
    content_->setGeometry(0, 0, panelWidth, wanted);
    content_->show();
    resize(panelWidth, wanted);
    progress_.runNow();
    if (isHidden()) QWidget::show();
    if (onResized) onResized();
    raise();
    update();
}

QWidget* ExportPanel::makeHead(const QString& title, const QString& icon, QColor color) {
    auto* close = new IconButton(QStringLiteral("close"), tr("Close"), tr("Close (Esc)"), content_, 24);
    close->move(panelWidth - padding + closeOverhang - close->width(), padding - 4);
    connect(close, &IconButton::clicked, this, [this] { dismiss(); });
    return new Head(title, icon, color, content_);
}

QHBoxLayout* ExportPanel::addButtons(int gap) {
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(8);
    buttons->addStretch(1);
    rows_->addSpacing(gap);
    rows_->addLayout(buttons);
    return buttons;
}

void ExportPanel::addAgain(QHBoxLayout& buttons) {
    again_ = new Button(ButtonKind::secondary, tr("Export again…"), {}, content_);
    again_->setEnabled(model_.clip() && model_.clip() == asked_);
    connect(again_, &Button::clicked, this, [this] { perform_(Command::exportClip); });
    buttons.addWidget(again_);
}

void ExportPanel::addSentence(const QString& sentence, QColor color) {
    rows_->addSpacing(8);
    rows_->addWidget(new Paragraph(theme::Type::body, color, sentence, content_));
}

void ExportPanel::makeRunning(bool isVerifying) {
    rows_->addWidget(makeHead(isVerifying ? tr("Verifying export…") : tr("Exporting"), {}, {}));
    rows_->addSpacing(8);
    auto* names = new QHBoxLayout;
    names->setSpacing(8);
    auto* name =
        new LineLabel(theme::Type::body, theme::text, valueText::fileName(model_.exporting().destination()), content_);
    names->addWidget(name, 1);
    if (!isVerifying) {
        share_ = new LineLabel(theme::Type::body, theme::text, {}, content_);
        share_->setTabular(true);
        names->addWidget(share_);
    }
    rows_->addLayout(names);
    rows_->addSpacing(8);
    bar_ = new ProgressBar(isVerifying ? tr("Verifying export…") : tr("Exporting"), theme::text, content_);
    rows_->addWidget(bar_);
    rows_->addSpacing(12);
    if (isVerifying) {
        bar_->setShare(-1);
        rows_->addWidget(new Paragraph(
            theme::Type::small, theme::text2,
            tr("The file is opened again and compared with the clip before it takes its place."), content_));
    } else {
        auto* numbers = new QHBoxLayout;
        frames_ = new LineLabel(theme::Type::small, theme::text2, {}, content_);
        timeLeft_ = new LineLabel(theme::Type::small, theme::text2, {}, content_);
        frames_->setTabular(true);
        timeLeft_->setTabular(true);
        timeLeft_->setAlignment(Qt::AlignRight);
        for (LineLabel* label : {frames_, timeLeft_})
            label->setFixedHeight(16);
        numbers->addWidget(frames_);
        numbers->addWidget(timeLeft_, 1);
        rows_->addLayout(numbers);
    }
    auto* cancel = new Button(ButtonKind::secondary, tr("Cancel"), {}, content_);
    connect(cancel, &Button::clicked, this, [this] { model_.cancelExport(); });
    addButtons(16)->addWidget(cancel);
}

void ExportPanel::refreshProgress() {
    if (!frames_) return;
    const ExportJob& job = model_.exporting();
    const double share = job.exportProgress();
    bar_->setShare(share);
    share_->setText(valueText::percent(share));
    const auto done = static_cast<std::int64_t>(std::floor(share * static_cast<double>(job.frameCount())));
    QString frames = tr("%1 of %2 frames").arg(done).arg(job.frameCount());
    const auto left = job.exportEstimatedRemainingTime();
    // The pace that the estimate stands on.
    if (left && *left > 0) {
        const double rate = static_cast<double>(job.frameCount()) * (1 - share) / *left;
        frames += QStringLiteral("    ") + tr("%1 fps").arg(rate, 0, 'f', rate < 10 ? 1 : 0);
    }
    frames_->setText(frames);
    timeLeft_->setText(left ? exportTexts::timeLeft(*left) : QString());
}

void ExportPanel::makeReport(const ExportEnd& end) {
    const std::filesystem::path file = model_.exporting().destination();
    rows_->addWidget(makeHead(tr("Last export verified"), QStringLiteral("verified"), theme::verified));
    rows_->addSpacing(8);
    rows_->addWidget(new LineLabel(theme::Type::label, theme::text, valueText::fileName(file), content_));
    rows_->addWidget(new Paragraph(theme::Type::small, theme::text2, text(end.report->summary), content_));
    rows_->addSpacing(12);
    rows_->addWidget(new Line(content_));
    rows_->addSpacing(4);
    for (const auto& line : exportTexts::reportLines(text(end.report->details))) {
        auto* row = new QHBoxLayout;
        row->setSpacing(0);
        auto* name = new LineLabel(theme::Type::body, theme::text2, line.name, content_);
        name->setFixedSize(nameWidth, 16);
        row->addWidget(name, 0, Qt::AlignTop);
        row->addWidget(new Paragraph(theme::Type::body, theme::text, line.value, content_), 1, Qt::AlignTop);
        rows_->addSpacing(8);
        rows_->addLayout(row);
    }
    auto* buttons = addButtons(16);
    auto* copy = new Button(ButtonKind::quiet, tr("Copy report"), {}, content_);
    connect(copy, &Button::clicked, this,
            [words = text(end.report->details)] { QGuiApplication::clipboard()->setText(words); });
    auto* open = new Button(ButtonKind::secondary, tr("Show in folder"), QStringLiteral("open"), content_);
    connect(open, &Button::clicked, this, [file] { showInFolder(file); });
    buttons->addWidget(copy);
    buttons->addWidget(open);
}

void ExportPanel::makeFailure(const ExportEnd& end) {
    rows_->addWidget(makeHead(tr("Export failed"), QStringLiteral("warning"), theme::attention));
    addSentence(text(end.failure), theme::text);
    auto* buttons = addButtons(16);
    auto* copy = new Button(ButtonKind::quiet, tr("Copy message"), {}, content_);
    connect(copy, &Button::clicked, this,
            [words = text(end.failure)] { QGuiApplication::clipboard()->setText(words); });
    buttons->addWidget(copy);
    addAgain(*buttons);
}

void ExportPanel::askAboutCodec(std::function<void()> onAccepted) {
    model_.dismissExportEnd(); // of the export before
    onCodecAccepted_ = std::move(onAccepted);
    asked_ = model_.clip();
    show(State::codecQuestion);
}

void ExportPanel::makeCodecQuestion() {
    rows_->addWidget(makeHead(tr("Source video codec cannot be matched"), QStringLiteral("warning"), theme::attention));
    addSentence(exportTexts::codecCannotBeMatched(text(model_.clip()->videoCodecDisplayName())), theme::text2);
    auto* buttons = addButtons(16);
    auto* cancel = new Button(ButtonKind::secondary, tr("Cancel"), {}, content_);
    connect(cancel, &Button::clicked, this, [this] { dismiss(); });
    auto* go = new Button(ButtonKind::primary, tr("Try HEVC / H.265"), {}, content_);
    go->setButtonHeight(28);
    connect(go, &Button::clicked, this, [this] {
        const auto accepted = std::exchange(onCodecAccepted_, nullptr);
        dismiss();
        if (accepted) accepted();
    });
    buttons->addWidget(cancel);
    buttons->addWidget(go);
    go->setFocus(Qt::OtherFocusReason);
}

void ExportPanel::reveal() {
    const State wanted = wantedState();
    if (wanted != State::nothing) show(wanted);
}

bool ExportPanel::dismiss() {
    if (isHidden()) return false;
    hide();
    if (state_ == State::codecQuestion) {
        state_ = State::nothing;
        onCodecAccepted_ = nullptr;
    }
    if (!model_.exporting().isExporting()) model_.dismissExportEnd();
    return true;
}

void ExportPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    theme::drawBox(painter, rect(), theme::sheetRadius, theme::raised, theme::border);
}

} // namespace flowtide
