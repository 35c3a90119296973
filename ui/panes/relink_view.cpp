#include "ui/panes/relink_view.h"

#include "ui/accessible_role.h"
#include "ui/icons.h"
#include "ui/panes/clip_facts.h"
#include "ui/panes/project_date.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QDir>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace flowtide {

namespace {
constexpr int cardWidth = 560;
constexpr int posterHeight = 232;
constexpr int lowestPoster = 96; ///< where the window is low
constexpr int padding = 24;
constexpr int nameWidth = 112;
constexpr double signCircle = 56;
constexpr double signSize = 28;
} // namespace

/// The poster, and below it what there is to know.
class RelinkView::Card final : public QWidget {
public:
    explicit Card(QWidget* parent)
        : QWidget(parent)
        , rows(new QVBoxLayout(this)) {
        setPosterHeight(posterHeight);
        rows->setSpacing(0);
    }
    void setPosterHeight(int pixels) {
        poster_ = pixels;
        rows->setContentsMargins(padding, poster_ + padding, padding, padding);
        update();
    }
    QVBoxLayout* rows;

protected:
    void paintEvent(QPaintEvent*) override {
        using namespace theme;
        QPainter painter(this);
        drawBox(painter, rect(), sheetRadius, pane);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath outline;
        outline.addRoundedRect(rect(), sheetRadius, sheetRadius);
        const QRectF poster(0, 0, width(), poster_);
        painter.setClipPath(outline);
        painter.fillRect(poster, control);
        painter.setClipping(false);
        drawHairline(painter, poster, Side::bottom);
        QRectF circle(0, 0, signCircle, signCircle);
        circle.moveCenter(poster.center());
        drawBox(painter, circle, signCircle / 2, pane);
        icons::draw(painter, QStringLiteral("clip-missing"), circle, signSize, attention);
        drawBox(painter, rect(), sheetRadius, {}, hairline);
    }

private:
    int poster_ = posterHeight;
};

/// The sentence about a wrong file.
class RelinkView::Refusal final : public QWidget {
public:
    explicit Refusal(QWidget* parent)
        : QWidget(parent) {
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(36, 12, 12, 12);
        column->setSpacing(4);
        sentence = new Paragraph(theme::Type::body, theme::text, {}, this);
        chosen = new LineLabel(theme::Type::small, theme::text2, {}, this);
        column->addWidget(sentence);
        column->addWidget(chosen);
    }
    Paragraph* sentence;
    LineLabel* chosen;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        theme::drawBox(painter, rect(), theme::controlRadius, theme::raised);
        icons::draw(painter, QStringLiteral("warning"), QRectF(12, 12, 16, 16), 16, theme::attention);
    }
};

RelinkView::RelinkView(FlowtideViewModel& model, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , card_(new Card(this)) {
    setAccessibleRole(*this, QAccessible::Pane);
    setAccessibleName(tr("Locate the original clip"));
    QVBoxLayout* rows = card_->rows;
    rows->addWidget(new Paragraph(theme::Type::sheetTitle, theme::text, tr("Locate the original clip"), card_));
    rows->addSpacing(4);
    rows->addWidget(new Paragraph(theme::Type::lead, theme::text2,
                                  tr("The clip of this project has moved. Your edits are kept. The file is recognized "
                                     "by its content, so a new name or folder is fine."),
                                  card_));
    rows->addSpacing(12);
    const auto addRow = [&](const QString& name, theme::Type type) {
        auto* row = new ValueRow(name, type, nameWidth, card_);
        rows->addSpacing(4);
        rows->addWidget(row);
        return row;
    };
    clip_ = addRow(tr("Clip"), theme::Type::body);
    folder_ = addRow(tr("Last folder"), theme::Type::body);
    duration_ = addRow(tr("Duration"), theme::Type::code);
    saved_ = addRow(tr("Project saved"), theme::Type::body);
    rows->addSpacing(16);
    refusal_ = new Refusal(card_);
    rows->addWidget(refusal_);
    rows->addSpacing(16);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    auto* remove = new Button(ButtonKind::quiet, tr("Remove from list"), {}, card_);
    connect(remove, &Button::clicked, this, [this] {
        if (const auto& project = model_.clips().pendingRelinkProject()) model_.removeFromRecent(Uuid(project->id));
        model_.forgetPendingRelink();
    });
    auto* close = new Button(ButtonKind::secondary, tr("Close project"), {}, card_);
    close->setButtonHeight(32);
    connect(close, &Button::clicked, this, [this] { model_.forgetPendingRelink(); });
    auto* locate = new Button(ButtonKind::primary, tr("Locate clip…"), QStringLiteral("relink"), card_);
    connect(locate, &Button::clicked, this, [this] {
        if (onLocate) onLocate();
    });
    buttons->addWidget(remove);
    buttons->addStretch(1);
    buttons->addWidget(close);
    buttons->addWidget(locate);
    rows->addLayout(buttons);

    changes_ =
        model_.subscribe(properties({Property::pendingRelinkProject}), [this](const PropertySet&) { refresh(); });
    refresh();
}

void RelinkView::setChosen(const std::filesystem::path& file) {
    chosen_ = valueText::fileName(file);
    refusal_->hide();
    place();
}

void RelinkView::showRefusal(const QString& sentence) {
    refusal_->sentence->setText(sentence);
    refusal_->chosen->setText(tr("Chosen: %1").arg(chosen_));
    refusal_->chosen->setVisible(!chosen_.isEmpty());
    refusal_->show();
    place();
}

void RelinkView::refresh() {
    const auto& project = model_.clips().pendingRelinkProject();
    if (!project) {
        shown_.reset();
        return;
    }
    if (shown_ == project->id) return;
    shown_ = project->id;
    refusal_->hide();
    const std::filesystem::path file = project->source.url.filePath().value_or(std::filesystem::path());
    clip_->setValue(valueText::fileName(file));
    folder_->setValue(folderText(file.parent_path(), valueText::path(QDir::homePath())));
    duration_->setValue(valueText::timeCode(project->source.duration));
    saved_->setValue(projectDate(project->savedAt, QDateTime::currentDateTime()));
    place();
}

void RelinkView::place() {
    card_->setPosterHeight(posterHeight);
    int cardHeight = card_->rows->heightForWidth(cardWidth);
    if (const int excess = std::min(cardHeight - height(), posterHeight - lowestPoster); excess > 0) {
        card_->setPosterHeight(posterHeight - excess);
        cardHeight -= excess;
    }
    card_->setGeometry((width() - cardWidth) / 2, std::max((height() - cardHeight) / 2, 0), cardWidth, cardHeight);
}

void RelinkView::resizeEvent(QResizeEvent*) {
    place();
}

void RelinkView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::well);
}

} // namespace flowtide
