#include "ui/panes/start_screen.h"

#include "ui/icons.h"
#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/viewer/state_chip.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr int cardGap = 24;
constexpr int padding = 32;
constexpr int headingTop = padding + DropTarget::targetHeight + 36;
constexpr int headingHeight = 16;
constexpr int cardsTop = headingTop + headingHeight + 20;
constexpr int wideScreen = 1920;

int columnWidth(int columns) {
    return columns * ProjectButton::cardSize.width() + (columns - 1) * cardGap;
}
} // namespace

int cardColumns(int width) {
    const int most = width > wideScreen ? 5 : 4;
    for (int columns = most; columns > 1; --columns)
        if (columnWidth(columns) + 2 * cardGap <= width) return columns;
    return 1;
}

/// Draws the heading of the cards.
class StartScreen::Content final : public QWidget {
public:
    QRectF heading; ///< empty without projects

protected:
    void paintEvent(QPaintEvent*) override {
        if (heading.isEmpty()) return;
        using namespace theme;
        QPainter painter(this);
        const QString title = StartScreen::tr("Recent projects");
        drawLine(painter, heading, Qt::AlignLeft, Type::title, theme::text, title);
        drawLine(painter, heading.adjusted(textWidth(Type::title, title) + 12, 0, 0, 0), Qt::AlignLeft, Type::small,
                 text2, StartScreen::tr("Autosaved projects and recent clips"));
        const QString place = StartScreen::tr("Saved on %1").arg(keyNames::thisComputer());
        drawLine(painter, heading, Qt::AlignRight, Type::small, text2, place);
        const double left = heading.right() - textWidth(Type::small, place) - 8 - 14;
        icons::draw(painter, QStringLiteral("drive"), QRectF(left, heading.top(), 14, heading.height()), 14, text2);
    }
};

StartScreen::StartScreen(SessionHost& host, std::function<void(Command)> perform, QWidget* parent)
    : QWidget(parent)
    , model_(host.model())
    , summaries_(host.scheduler(), host.pictures(),
                 static_cast<int>(std::ceil(ProjectButton::cardSize.width() * devicePixelRatioF())))
    , area_(new SlimScrollArea(this))
    , content_(new Content) {
    setAccessibleName(tr("Start"));
    target_ = new DropTarget(content_);
    connect(target_->openButton(), &Button::clicked, this, [perform = std::move(perform)] { perform(Command::open); });
    area_->setWidgetResizable(false);
    area_->setContent(content_);
    summaries_.onChanged = [this] { content_->update(); };
    opening_.setSingleShot(true);
    opening_.setInterval(StateChip::waitMilliseconds);
    connect(&opening_, &QTimer::timeout, this, [this] { target_->showOpening(PictureState::of(model_).words); });
    changes_ = model_.subscribe(properties({Property::recentProjects, Property::isOpening}),
                                [this](const PropertySet& changed) {
                                    if (changed != properties({Property::isOpening})) refresh();
                                    followOpening();
                                });
    refresh();
}

void StartScreen::refresh() {
    const RecentProjects& projects = model_.binding().recentProjects();
    shownCards_ = static_cast<int>(projects.size());
    for (std::size_t index = 0; index < projects.size(); ++index) {
        if (index == cards_.size()) {
            auto* card = new ProjectButton(ProjectButton::Look::card, model_, summaries_, content_);
            card->onOpen = [this](const RecentProject& project) {
                if (onProject) onProject(project);
            };
            cards_.push_back(card);
        }
        cards_[index]->setProject(projects[index]);
        cards_[index]->show();
    }
    for (std::size_t index = projects.size(); index < cards_.size(); ++index)
        cards_[index]->hide();
    place();
}

void StartScreen::followOpening() {
    // What opens at once needs no words.
    if (model_.clips().isOpening().empty()) {
        opening_.stop();
        target_->showOpening({});
    } else if (!opening_.isActive()) {
        opening_.start();
    }
}

void StartScreen::resizeEvent(QResizeEvent*) {
    area_->setGeometry(rect());
    place();
}

void StartScreen::place() {
    const int columns = cardColumns(width());
    const int left = (width() - columnWidth(columns)) / 2;
    target_->setGeometry(left, padding, columnWidth(columns), DropTarget::targetHeight);
    int bottom = padding + DropTarget::targetHeight;
    for (int index = 0; index < shownCards_; ++index) {
        const int x = left + index % columns * (ProjectButton::cardSize.width() + cardGap);
        const int y = cardsTop + index / columns * (ProjectButton::cardSize.height() + cardGap);
        cards_[static_cast<std::size_t>(index)]->setGeometry(QRect(QPoint(x, y), ProjectButton::cardSize));
        bottom = y + ProjectButton::cardSize.height();
    }
    content_->heading = shownCards_ > 0 ? QRectF(left, headingTop, columnWidth(columns), headingHeight) : QRectF();
    content_->resize(width(), std::max(bottom + padding, height()));
    content_->update();
}

void StartScreen::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::well);
}

} // namespace flowtide
