// Writes stored records as JSON text.
#pragma once

#include "project/json_enums.h"
#include "project/json_fields.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace flowtide::json {

/// Builds one pretty-printed text. Absent values leave no trace; keys come in the order of their description.
class Writer {
public:
    void write(double value); ///< throws ProjectError unless finite; reads back to the same bits
    void write(bool value);
    void write(std::int64_t value);
    void write(std::string_view text); ///< bytes that are no UTF-8 become U+FFFD
    void write(const std::string& text) { write(std::string_view(text)); }
    void write(const Uuid& id);
    void write(const Url& url) { write(std::string_view(url.text)); }
    void write(const Bookmark& bookmark); ///< throws ProjectError unless it is Base64
    void write(ReferenceDate date) { write(date.seconds); }

    template <typename Enum>
    requires std::is_enum_v<Enum>
    void write(Enum value) { writePlain(rawValue(value)); }

    template <typename Item>
    void write(const std::vector<Item>& items) {
        open('[');
        for (const Item& item : items) {
            beginItem();
            write(item);
        }
        close(']');
    }

    template <typename Record>
    requires std::is_class_v<Record>
    void write(const Record& record) {
        open('{');
        describe(record, [this](std::string_view key, const auto& field) { this->writeMember(key, field); });
        close('}');
    }

    /// The text so far, ended with a line break.
    std::string finished() &&;

private:
    template <typename Field>
    void writeMember(std::string_view key, const Field& field) {
        beginItem();
        writePlain(key);
        text_ += ": ";
        write(field);
    }
    template <typename Field>
    void writeMember(std::string_view key, const std::optional<Field>& field) {
        if (field) writeMember(key, *field);
    }

    void open(char bracket);
    void beginItem();
    void close(char bracket);
    void startLine();
    /// A text without anything to escape.
    void writePlain(std::string_view text);

    std::string text_;
    std::size_t depth_ = 0;
    bool empty_ = true; ///< nothing is in the innermost bracket yet
};

} // namespace flowtide::json
