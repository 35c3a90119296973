#include "ui/accessible_items.h"

#include <QAccessibleWidget>
#include <QPointer>
#include <algorithm>
#include <utility>

namespace flowtide {

namespace {

constexpr std::size_t mostToldOne = 8; ///< new items that are told of one by one

class ItemInterface final : public QAccessibleInterface,
                            public QAccessibleActionInterface,
                            public QAccessibleValueInterface {
public:
    ItemInterface(AccessibleItems& items, const Uuid& id)
        : items_(&items)
        , id_(id) {}

    const Uuid& id() const { return id_; }

    bool isValid() const override { return items_ && items_->indexOf(id_) >= 0; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return items_ ? items_->widget().window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override {
        return items_ ? QAccessible::queryAccessibleInterface(&items_->widget()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override {
        const auto now = item();
        return now && kind == QAccessible::Name ? now->name : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override {
        const auto now = item();
        if (!now || now->place.isEmpty()) return {};
        return {items_->widget().mapToGlobal(now->place.topLeft()).toPoint(), now->place.size().toSize()};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        const auto now = item();
        state.invalid = !now;
        if (!now) return state;
        const QWidget& widget = items_->widget();
        state.selectable = true;
        state.focusable = widget.focusPolicy() != Qt::NoFocus;
        state.selected = now->isSelected;
        state.focused = widget.hasFocus() && items_->source().currentItem() == id_;
        state.invisible = !widget.isVisible();
        state.offscreen = now->place.isEmpty() || !now->place.intersects(widget.rect());
        state.disabled = !widget.isEnabled();
        return state;
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& action) override {
        if (!isValid()) return;
        if (action == setFocusAction()) items_->widget().setFocus(Qt::OtherFocusReason);
        items_->source().pressItem(id_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    QVariant currentValue() const override { return value().now; }
    void setCurrentValue(const QVariant& wanted) override {
        const AccessibleValue range = value();
        if (isValid()) items_->source().setItemValue(id_, std::clamp(wanted.toDouble(), range.lowest, range.highest));
    }
    QVariant minimumValue() const override { return value().lowest; }
    QVariant maximumValue() const override { return value().highest; }
    QVariant minimumStepSize() const override { return value().step; }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
        const bool isValued = type == QAccessible::ValueInterface && item().value_or(AccessibleItem{}).value;
        return isValued ? static_cast<QAccessibleValueInterface*>(this) : nullptr;
    }

private:
    std::optional<AccessibleItem> item() const { return items_ ? items_->item(id_) : std::nullopt; }
    AccessibleValue value() const { return item().value_or(AccessibleItem{}).value.value_or(AccessibleValue{}); }

    QPointer<AccessibleItems> items_;
    Uuid id_;
};

/// The widget: its items come before the widgets in it.
class ItemsWidget final : public QAccessibleWidget {
public:
    explicit ItemsWidget(AccessibleItems& items)
        : QAccessibleWidget(&items.widget(), items.role())
        , items_(&items) {}

    int childCount() const override { return own() + QAccessibleWidget::childCount(); }
    QAccessibleInterface* child(int index) const override {
        return index < own() ? items_->interfaceAt(index) : QAccessibleWidget::child(index - own());
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (const auto* item = dynamic_cast<const ItemInterface*>(child))
            return items_ ? items_->indexOf(item->id()) : -1;
        const int index = QAccessibleWidget::indexOfChild(child);
        return index < 0 ? index : index + own();
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        QAccessibleInterface* child = QAccessibleWidget::childAt(x, y);
        if (child || !items_) return child;
        const auto id = items_->source().itemUnder(widget()->mapFromGlobal(QPointF(x, y)));
        return id ? items_->interfaceOf(*id) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        const auto current = items_ && widget()->hasFocus() ? items_->source().currentItem() : std::nullopt;
        return current ? items_->interfaceOf(*current) : QAccessibleWidget::focusChild();
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Description && items_ ? items_->source().itemSummary()
                                                          : QAccessibleWidget::text(kind);
    }

private:
    int own() const { return items_ ? items_->count() : 0; }

    QPointer<AccessibleItems> items_;
};

} // namespace

AccessibleItems::AccessibleItems(QWidget& widget, AccessibleSource& source, QAccessible::Role role)
    : QObject(&widget)
    , widget_(widget)
    , source_(source)
    , role_(role) {
    QAccessible::installActivationObserver(this);
}

AccessibleItems::~AccessibleItems() {
    QAccessible::removeActivationObserver(this);
    for (const auto& [id, made] : made_)
        QAccessible::deleteAccessibleInterface(made);
}

AccessibleItems* AccessibleItems::of(const QWidget& widget) {
    return widget.findChild<AccessibleItems*>(QString(), Qt::FindDirectChildrenOnly);
}

void AccessibleItems::read() const {
    if (!std::exchange(isStale_, false)) return;
    std::vector<Uuid> ids = source_.itemIds();
    if (ids == ids_) return;
    ids_ = std::move(ids);
    indices_.clear();
    for (std::size_t i = 0; i < ids_.size(); ++i)
        indices_.emplace(ids_[i], static_cast<int>(i));
}

int AccessibleItems::count() const {
    read();
    return static_cast<int>(ids_.size());
}

int AccessibleItems::indexOf(const Uuid& id) const {
    read();
    const auto found = indices_.find(id);
    return found == indices_.end() ? -1 : found->second;
}

std::optional<AccessibleItem> AccessibleItems::item(const Uuid& id) const {
    const int index = indexOf(id);
    return index < 0 ? std::nullopt : source_.accessibleItem(id, static_cast<std::size_t>(index));
}

QAccessibleInterface* AccessibleItems::interfaceOf(const Uuid& id) {
    if (indexOf(id) < 0) return nullptr;
    const auto made = made_.find(id);
    if (made != made_.end()) return QAccessible::accessibleInterface(made->second);
    // Owned by Qt's cache of interfaces.
    auto* interface = new ItemInterface(*this, id);
    made_.emplace(id, QAccessible::registerAccessibleInterface(interface));
    return interface;
}

QAccessibleInterface* AccessibleItems::interfaceAt(int index) {
    return index >= 0 && index < count() ? interfaceOf(ids_[static_cast<std::size_t>(index)]) : nullptr;
}

void AccessibleItems::tell(const Uuid& id, QAccessible::Event event) {
    QAccessibleInterface* interface = interfaceOf(id);
    if (!interface) return;
    if (event == QAccessible::ValueChanged) {
        const auto now = item(id);
        if (!now || !now->value) return;
        QAccessibleValueChangeEvent told(interface, now->value->now);
        return onEvent(&told);
    }
    QAccessibleEvent told(interface, event);
    onEvent(&told);
}

void AccessibleItems::changed() {
    isStale_ = true;
    if (!isListenedTo_) return;
    if (!made_.empty()) tellOfMembers();
    tellOfCurrent();
}

void AccessibleItems::tellOfMembers() {
    std::vector<Uuid> now = source_.itemIds();
    isStale_ = false;
    if (now == ids_) return;
    std::vector<Uuid> sorted = now;
    std::sort(sorted.begin(), sorted.end());
    // Told of while they still have their places.
    for (auto each = made_.begin(); each != made_.end();) {
        if (std::binary_search(sorted.begin(), sorted.end(), each->first)) {
            ++each;
            continue;
        }
        tell(each->first, QAccessible::ObjectDestroyed);
        QAccessible::deleteAccessibleInterface(each->second);
        each = made_.erase(each);
    }
    std::vector<Uuid> added;
    for (const Uuid& id : now)
        if (!indices_.contains(id)) added.push_back(id);
    isStale_ = true;
    read();
    if (added.size() > mostToldOne) {
        QAccessibleEvent event(&widget_, QAccessible::ObjectReorder);
        return onEvent(&event);
    }
    for (const Uuid& id : added)
        tell(id, QAccessible::ObjectCreated);
}

void AccessibleItems::currentChanged() {
    if (!isListenedTo_) return;
    const auto before = std::exchange(current_, source_.currentItem());
    if (before && before != current_) tell(*before, QAccessible::SelectionRemove);
    lastTold_ = current_ ? item(*current_) : std::nullopt;
    if (!current_) {
        if (!before) return;
        QAccessibleEvent event(&widget_, QAccessible::SelectionWithin);
        return onEvent(&event);
    }
    if (before != current_) tell(*current_, QAccessible::Selection);
    if (widget_.hasFocus()) tell(*current_, QAccessible::Focus);
}

void AccessibleItems::focused() {
    // Once Qt has told that the widget has it.
    if (isListenedTo_) QMetaObject::invokeMethod(this, &AccessibleItems::currentChanged, Qt::QueuedConnection);
}

void AccessibleItems::tellOfCurrent() {
    if (source_.currentItem() != current_) return currentChanged();
    if (!current_) return;
    const auto before = std::exchange(lastTold_, item(*current_));
    if (!before || !lastTold_) return;
    if (before->name != lastTold_->name) tell(*current_, QAccessible::NameChanged);
    const auto number = [](const AccessibleItem& item) { return item.value.value_or(AccessibleValue{}).now; };
    if (number(*before) != number(*lastTold_)) tell(*current_, QAccessible::ValueChanged);
}

QAccessibleInterface* makeItemsInterface(QWidget& widget) {
    AccessibleItems* items = AccessibleItems::of(widget);
    // Owned by Qt's cache of interfaces.
    return items ? new ItemsWidget(*items) : nullptr;
}

} // namespace flowtide
