#include "ui/panes/clip_tab.h"

#include "ui/controls/text_action.h"
#include "ui/icons.h"
#include "ui/panes/clip_facts.h"
#include "ui/panes/signed_line.h"
#include "ui/show_in_folder.h"
#include "ui/value_text.h"

#include <QDir>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace flowtide {

namespace {
constexpr int nameWidth = 88;
constexpr int rowGap = 4;
} // namespace

ClipTab::ClipTab(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model)
    , column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    column_->addWidget(makeProxySection());
    exportSection_ = makeExportSection();
    column_->addWidget(exportSection_);
    column_->addStretch(1);
    clipChanges_ = model_.subscribe(properties({Property::clip}), [this](const PropertySet&) { showClip(); });
    const PropertySet states = properties({Property::isGeneratingProxy, Property::proxyMessage});
    proxyChanges_ =
        model_.subscribe(states | properties({Property::proxyProgress}), [this, states](const PropertySet& changed) {
            if ((changed & states).any())
                proxyProgress_.runNow();
            else
                proxyProgress_.request();
        });
    exportChanges_ = model_.subscribe(properties({Property::lastExportVerification}),
                                      [this](const PropertySet&) { refreshExport(); });
    showClip();
    refreshProxy();
    refreshExport();
}

void ClipTab::showClip() {
    delete facts_;
    facts_ = nullptr;
    const auto& clip = model_.clip();
    if (!clip) return;
    facts_ = new QWidget(this);
    auto* sections = new QVBoxLayout(facts_);
    sections->setContentsMargins(0, 0, 0, 0);
    sections->setSpacing(0);
    bool isFirst = true;
    for (const ClipFactGroup& group : clipFacts(*clip, valueText::path(QDir::homePath()))) {
        auto* section = new InspectorSection(group.title, facts_);
        if (isFirst) {
            section->setFirst();
            auto* show = new TextAction(tr("Show in folder"), QStringLiteral("open"), section);
            connect(show, &TextAction::clicked, this, [file = clip->url] { showInFolder(file); });
            section->addAction(show, TextAction::overhang);
        }
        int gap = 0;
        for (const ClipFact& fact : group.facts) {
            auto* row =
                new ValueRow(fact.name, fact.isMeasured ? theme::Type::code : theme::Type::body, nameWidth, section);
            row->setValue(fact.value);
            section->add(row, gap);
            gap = rowGap;
        }
        sections->addWidget(section);
        isFirst = false;
    }
    column_->insertWidget(0, facts_);
}

QWidget* ClipTab::makeProxySection() {
    auto* section = new InspectorSection(tr("Preview proxy"), this);
    failure_ = new Paragraph(theme::Type::small, theme::attention, {}, section);
    failure_->setContentsMargins(0, 0, 0, 8);
    section->add(failure_);
    build_ = new Button(ButtonKind::secondary, tr("Build 720p proxy"), {}, section);
    connect(build_, &Button::clicked, this, [this] { model_.makeProxy(); });
    section->add(build_);

    progressRow_ = new QWidget(section);
    auto* rows = new QVBoxLayout(progressRow_);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    progressShare_ = new LineLabel(theme::Type::body, theme::text, {}, progressRow_);
    progressShare_->setTabular(true);
    rows->addLayout(labelledRow(tr("Building 720p preview proxy..."), progressShare_));
    progress_ = new ProgressBar(tr("Building 720p preview proxy..."), theme::text, progressRow_);
    rows->addSpacing(4);
    rows->addWidget(progress_);
    rows->addSpacing(12);
    cancel_ = new Button(ButtonKind::secondary, tr("Cancel"), {}, progressRow_);
    connect(cancel_, &Button::clicked, this, [this] { model_.cancelProxy(); });
    rows->addWidget(cancel_, 0, Qt::AlignRight);
    section->add(progressRow_);

    auto* ready = new SignedLine(QStringLiteral("check"), theme::verified, tr("720p proxy ready"), section);
    ready_ = ready->words();
    section->add(ready);
    return section;
}

QWidget* ClipTab::makeExportSection() {
    auto* section = new InspectorSection(tr("Last export"), this);
    section->add(new SignedLine(QStringLiteral("verified"), theme::verified, tr("Last export verified"), section));
    exportSummary_ = new Paragraph(theme::Type::small, theme::text2, {}, section);
    exportSummary_->setContentsMargins(SignedLine::textLeft, 0, 0, 0);
    section->add(exportSummary_);
    return section;
}

void ClipTab::refreshProxy() {
    const ProxyJob& job = model_.proxies();
    const bool isBuilding = job.isGeneratingProxy();
    const bool isReady = job.proxy().has_value();
    const bool hasFailed = !isBuilding && !isReady && job.proxyMessage();
    failure_->setVisible(hasFailed);
    if (hasFailed) failure_->setText(QString::fromStdString(*job.proxyMessage()));
    build_->setVisible(!isBuilding && !isReady);
    progressRow_->setVisible(isBuilding);
    progress_->setShare(job.proxyProgress());
    progressShare_->setText(valueText::percent(job.proxyProgress()));
    ready_->parentWidget()->setVisible(isReady && !isBuilding);
}

void ClipTab::refreshExport() {
    const auto& report = model_.exporting().lastExportVerification();
    exportSection_->setVisible(report != nullptr);
    if (report) exportSummary_->setText(QString::fromStdString(report->summary));
}

} // namespace flowtide
