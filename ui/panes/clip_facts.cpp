#include "ui/panes/clip_facts.h"

#include "media/export/export_validation.h"
#include "ui/value_text.h"

#include <QCoreApplication>
#include <cmath>

namespace flowtide {

namespace {

QString standard(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// "48 000".
QString grouped(double number) {
    QString digits = QString::number(std::llround(number));
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, QChar(0x202F));
    return digits;
}

QString dataRate(double bitsPerSecond) {
    if (bitsPerSecond < 1e6)
        return QCoreApplication::translate("ClipFacts", "%1 kb/s").arg(std::lround(bitsPerSecond / 1e3));
    return QCoreApplication::translate("ClipFacts", "%1 Mb/s").arg(bitsPerSecond / 1e6, 0, 'f', 1);
}

QString colorText(const ImportedClip& clip) {
    const QString range = clip.videoIsFullRange() ? QCoreApplication::translate("ClipFacts", "full range")
                                                  : QCoreApplication::translate("ClipFacts", "video range");
    const auto& tags = clip.videoColorProperties();
    if (!tags) return QCoreApplication::translate("ClipFacts", "Untagged, %1").arg(range);
    const std::string transfer = tags->transferFunction.value_or(std::string());
    const std::string primaries = tags->primaries.value_or(std::string());
    QString space;
    if (transfer == "smpte2084")
        space = QCoreApplication::translate("ClipFacts", "HDR (PQ)");
    else if (transfer == "arib-std-b67")
        space = QCoreApplication::translate("ClipFacts", "HDR (HLG)");
    else if (primaries == "bt709")
        space = QCoreApplication::translate("ClipFacts", "Rec. 709");
    else if (primaries == "bt2020")
        space = QCoreApplication::translate("ClipFacts", "Rec. 2020");
    else if (primaries == "smpte170m" || primaries == "bt470bg")
        space = QCoreApplication::translate("ClipFacts", "Rec. 601");
    else if (primaries == "smpte432")
        space = QCoreApplication::translate("ClipFacts", "Display P3");
    else
        space = standard(primaries.empty() ? tags->matrix.value_or(transfer) : primaries);
    return QStringLiteral("%1, %2").arg(space, range);
}

ClipFactGroup videoFacts(const ImportedClip& clip) {
    ClipFactGroup group{QCoreApplication::translate("ClipFacts", "Video"), {}};
    group.facts.push_back(
        {QCoreApplication::translate("ClipFacts", "Codec"),
         standard(clip.videoCodecType ? codecLabel(*clip.videoCodecType) : clip.videoCodecDisplayName())});
    group.facts.push_back({QCoreApplication::translate("ClipFacts", "Dimensions"),
                           QCoreApplication::translate("ClipFacts", "%1 × %2").arg(clip.width).arg(clip.height)});
    group.facts.push_back(
        {QCoreApplication::translate("ClipFacts", "Frame rate"),
         QCoreApplication::translate("ClipFacts", "%1 fps").arg(standard(formatFrameRate(clip.frameRate)))});
    group.facts.push_back({QCoreApplication::translate("ClipFacts", "Bit depth"),
                           QCoreApplication::translate("ClipFacts", "%1-bit").arg(clip.videoBitDepth())});
    group.facts.push_back({QCoreApplication::translate("ClipFacts", "Color"), colorText(clip)});
    if (const auto rate = clip.videoEstimatedDataRate())
        group.facts.push_back({QCoreApplication::translate("ClipFacts", "Data rate"), dataRate(*rate)});
    return group;
}

ClipFactGroup audioFacts(const ImportedClip& clip) {
    ClipFactGroup group{QCoreApplication::translate("ClipFacts", "Audio"), {}};
    if (!clip.audio) {
        group.facts.push_back(
            {QCoreApplication::translate("ClipFacts", "Format"), QCoreApplication::translate("ClipFacts", "No audio")});
        return group;
    }
    const AudioTrack& track = *clip.audio;
    group.facts.push_back(
        {QCoreApplication::translate("ClipFacts", "Format"), standard(audioFormatLabel(track.formatID))});
    group.facts.push_back({QCoreApplication::translate("ClipFacts", "Sample rate"),
                           QCoreApplication::translate("ClipFacts", "%1 Hz").arg(grouped(track.sampleRate))});
    const QString channels = QString::number(track.channelCount);
    group.facts.push_back({QCoreApplication::translate("ClipFacts", "Channels"),
                           track.channelCount > 2 && !track.channelLayout.empty()
                               ? QStringLiteral("%1 (%2)").arg(channels, standard(track.channelLayout))
                               : channels});
    return group;
}

} // namespace

QString folderText(const std::filesystem::path& folder, const std::filesystem::path& home) {
    if (home.empty()) return valueText::path(folder);
    const std::filesystem::path inside = folder.lexically_relative(home);
    if (inside.empty() || *inside.begin() == "..") return valueText::path(folder);
    return inside == "." ? QStringLiteral("~") : QStringLiteral("~/") + valueText::path(inside);
}

std::vector<ClipFactGroup> clipFacts(const ImportedClip& clip, const std::filesystem::path& home) {
    const std::string_view container = fileTypeName(clip.fileType);
    ClipFactGroup file{
        QCoreApplication::translate("ClipFacts", "Clip"),
        {{QCoreApplication::translate("ClipFacts", "File"), valueText::fileName(clip.url)},
         {QCoreApplication::translate("ClipFacts", "Folder"), folderText(clip.url.parent_path(), home)},
         {QCoreApplication::translate("ClipFacts", "Duration"), valueText::timeCode(clip.duration), true},
         {QCoreApplication::translate("ClipFacts", "Container"), standard(std::string(container))}}};
    return {std::move(file), videoFacts(clip), audioFacts(clip)};
}

} // namespace flowtide
