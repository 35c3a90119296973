// Times, play and steps, and the switches of the picture.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>
#include <vector>

namespace flowtide {

class Readout;

class TransportBar final : public QWidget {
    Q_OBJECT

public:
    static constexpr int speedNeedsWidth = 840;

    TransportBar(SessionHost& host, std::function<void(Command)> perform, QWidget* parent = nullptr);
    TransportBar(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    IconButton* add(const QString& icon, const QString& name, const QString& tip, std::function<void()> act);
    IconButton* add(const QString& icon, const QString& name, const QString& tip, Command command);
    void refreshTimes();
    void refreshButtons();
    void place();

    FlowtideViewModel& model_;
    std::function<void(Command)> perform_;
    Readout* source_;
    Readout* output_;
    Readout* speed_;
    std::vector<IconButton*> center_;
    std::vector<IconButton*> right_;
    IconButton* play_;
    IconButton* loop_;
    IconButton* crop_;
    IconButton* compare_;
    IconButton* fullScreen_;
    Subscription changes_;
    Subscription times_;
};

} // namespace flowtide
