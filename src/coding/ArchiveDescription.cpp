// The readable tree of KeyedUnarchiver::describeArchive.
#include <cstdio>
#include <string>
#include <vector>

#include "coding/ArchiveDocument.h"
#include "coding/ArchiveFormat.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"

namespace vn {

using namespace coding_internal;

namespace {

constexpr std::size_t kShownDataBytes = 32;

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escape[8];
                    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
                    out += escape;
                } else {
                    out += c;
                }
        }
    }
    return out + "\"";
}

std::string describeData(const Data& data) {
    std::string out = "<" + std::to_string(data.size()) + (data.size() == 1 ? " byte" : " bytes");
    if (!data.empty()) out += " ";
    char hex[3];
    for (std::size_t i = 0; i < data.size() && i < kShownDataBytes; ++i) {
        std::snprintf(hex, sizeof hex, "%02x", data[i]);
        out += hex;
    }
    if (data.size() > kShownDataBytes) out += "...";
    return out + ">";
}

std::string describePlain(const Value& value) {
    if (const std::string* text = value.string()) return quoted(*text);
    if (const Data* data = value.data()) return describeData(*data);
    if (const Date* date = value.date()) return "date " + date->description();
    const Number& number = *value.number();
    if (number.isBoolean()) return number.boolValue() ? "true" : "false";
    if (number.isFloatingPoint()) return shortestDoubleText(number.doubleValue());
    return number.description();
}

class TreeWriter {
  public:
    explicit TreeWriter(const ArchiveDocument& document)
        : document_(document), shown_(static_cast<std::size_t>(document.objectCount()), false) {}

    std::string write() {
        writeFields(document_.top(), 0);
        return std::move(out_);
    }

  private:
    void line(int indent, const std::string& text) {
        out_.append(static_cast<std::size_t>(indent) * 4, ' ');
        out_ += text;
        out_ += '\n';
    }

    // Every field of a dictionary node except "$class", keys unescaped.
    void writeFields(plist_t dictionary, int indent) {
        forEachDictionaryItem(dictionary, [&](std::string name, plist_t value) {
            if (name == kClassKey) return;
            if (name.rfind("$$", 0) == 0) name.erase(0, 1);
            writeNode(name + " = ", value, indent);
        });
    }

    // A field node: a reference, a plain value or an inline array.
    void writeNode(const std::string& label, plist_t node, int indent) {
        if (const auto uid = uidOf(node)) return writeEntry(label, *uid, indent);
        if (const auto plain = plainValueOf(node))
            return line(indent, label + describePlain(*plain));
        if (isType(node, PLIST_ARRAY)) {
            line(indent, label + "[");
            writeArrayItems(node, indent + 1);
            return line(indent, "]");
        }
        line(indent, label + "<unexpected dictionary>");
    }

    void writeArrayItems(plist_t array, int indent) {
        for (plist_t item : arrayItems(array)) writeNode("", item, indent);
    }

    void writeEntry(const std::string& label, std::uint64_t uid, int indent) {
        if (uid == 0) return line(indent, label + "nil");
        if (uid >= document_.objectCount())
            return line(indent, label + "<UID " + std::to_string(uid) + " out of range>");
        plist_t entry = document_.object(uid);
        if (const auto plain = plainValueOf(entry))
            return line(indent, label + describePlain(*plain));
        const std::string tag = " #" + std::to_string(uid);
        const auto className = classNameOf(entry);
        if (!className) return line(indent, label + "<object" + tag + " without a class>");
        if (shown_[static_cast<std::size_t>(uid)])
            return line(indent, label + *className + tag + " (shown above)");
        if (indent >= KeyedArchiver::kMaxNestingDepth)
            return line(indent, label + *className + tag + " (nested too deeply)");
        shown_[static_cast<std::size_t>(uid)] = true;
        writeObject(label + *className + tag, *className, entry, indent);
    }

    std::optional<std::string> classNameOf(plist_t entry) const {
        const auto classUid = uidOf(dictItem(entry, std::string(kClassKey)));
        if (!classUid || *classUid == 0 || *classUid >= document_.objectCount())
            return std::nullopt;
        return textOf(dictItem(document_.object(*classUid), std::string(kClassNameKey)));
    }

    void writeObject(const std::string& heading, const std::string& className, plist_t entry,
                     int indent) {
        plist_t objects = dictItem(entry, std::string(kObjectsField));
        plist_t keys = dictItem(entry, std::string(kKeysField));
        const bool hasElements = isType(objects, PLIST_ARRAY);
        if (className == "NSNull") return line(indent, heading);
        if (hasElements && isType(keys, PLIST_ARRAY) &&
            plist_array_get_size(keys) == plist_array_get_size(objects)) {
            line(indent, heading + " {");
            const std::vector<plist_t> keyItems = arrayItems(keys);
            const std::vector<plist_t> valueItems = arrayItems(objects);
            for (std::size_t i = 0; i < keyItems.size(); ++i) {
                writeNode(keyLabel(keyItems[i]) + " = ", valueItems[i], indent + 1);
            }
            return line(indent, "}");
        }
        if (hasElements && plist_dict_get_size(entry) == 2) {
            line(indent, heading + " [");
            writeArrayItems(objects, indent + 1);
            return line(indent, "]");
        }
        if (className == "NSDecimalNumber") {
            if (const auto decimal = decimalOf(entry))
                return line(indent, heading + " " + decimal->description());
        }
        if (className == "NSDate") {
            const auto time = plainValueOf(dictItem(entry, std::string(kTimeField)));
            if (time && time->isNumber())
                return line(indent,
                            heading + " " + Date{time->number()->doubleValue()}.description());
        }
        line(indent, heading + " {");
        writeFields(entry, indent + 1);
        line(indent, "}");
    }

    // A dictionary key shown inline: texts quoted, anything else described.
    std::string keyLabel(plist_t node) const {
        const auto uid = uidOf(node);
        plist_t key =
            uid && *uid > 0 && *uid < document_.objectCount() ? document_.object(*uid) : node;
        if (const auto plain = plainValueOf(key)) return describePlain(*plain);
        return uid ? "#" + std::to_string(*uid) : "<key>";
    }

    const ArchiveDocument& document_;
    std::vector<bool> shown_;
    std::string out_;
};

}  // namespace

std::optional<std::string> KeyedUnarchiver::describeArchive(const Data& data, ErrorPtr* error) {
    std::string reason;
    const auto document = ArchiveDocument::open(data, reason);
    if (!document) {
        if (error) *error = makeCodingError(NSCoderReadCorruptError, reason);
        return std::nullopt;
    }
    return TreeWriter(*document).write();
}

}  // namespace vn
