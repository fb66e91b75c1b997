// Test helpers for keyed archives: python3's plistlib as an independent reader and writer of
// binary property lists, and a small archivable class.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <ostream>
#include <string>

#include "testing/ValuePrinting.h"
#include "vn/coding/Coder.h"
#include "vn/coding/Coding.h"
#include "vn/platform/FileSystem.h"
#include "vn/platform/Value.h"

namespace vn::testing {

inline std::string writeTemporaryFile(const std::string& name, const std::string& contents) {
    const std::string path = temporaryDirectory() + name;
    std::ofstream(path, std::ios::binary) << contents;
    return path;
}

inline Data readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Data(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Runs a python3 script with one argument and answers what it printed.
inline std::string runPython(const std::string& script, const std::string& argument) {
    const std::string scriptPath = writeTemporaryFile("script.py", script);
    const std::string command = "python3 '" + scriptPath + "' '" + argument + "'";
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) ADD_FAILURE() << "cannot run python3";
    std::string output;
    std::array<char, 4096> buffer{};
    while (pipe && std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe.get()))
        output += buffer.data();
    return output;
}

// plistlib's reading of a binary property list, flattened into "path = typed value" entries:
// "$top/root" -> "uid:1", "$objects/0" -> "str:$null", "$objects/3/NS.time" -> "real:0.5";
// containers appear as "dict:<count>" / "array:<count>", data as "data:<hex>".
inline std::map<std::string, std::string> plistlibDump(const Data& archive) {
    const std::string path = writeTemporaryFile(
        "archive.bplist",
        std::string(reinterpret_cast<const char*>(archive.data()), archive.size()));
    const std::string script = R"(
import plistlib, sys
def dump(path, value):
    if isinstance(value, plistlib.UID): print(f"{path}\tuid:{value.data}")
    elif isinstance(value, bool): print(f"{path}\tbool:{value}")
    elif isinstance(value, int): print(f"{path}\tint:{value}")
    elif isinstance(value, float): print(f"{path}\treal:{value!r}")
    elif isinstance(value, str): print(f"{path}\tstr:{value.encode('unicode_escape').decode()}")
    elif isinstance(value, bytes): print(f"{path}\tdata:{value.hex()}")
    elif isinstance(value, dict):
        print(f"{path}\tdict:{len(value)}")
        for key, item in value.items(): dump(f"{path}/{key}" if path else key, item)
    elif isinstance(value, list):
        print(f"{path}\tarray:{len(value)}")
        for index, item in enumerate(value): dump(f"{path}/{index}", item)
    else: print(f"{path}\tother:{type(value).__name__}")
with open(sys.argv[1], 'rb') as f: dump("", plistlib.loads(f.read(), fmt=plistlib.FMT_BINARY))
)";
    std::map<std::string, std::string> entries;
    const std::string output = runPython(script, path);
    std::size_t start = 0;
    while (start < output.size()) {
        const std::size_t end = output.find('\n', start);
        const std::string line = output.substr(start, end - start);
        const std::size_t tab = line.find('\t');
        if (tab != std::string::npos) entries[line.substr(0, tab)] = line.substr(tab + 1);
        start = end == std::string::npos ? output.size() : end + 1;
    }
    return entries;
}

// Bytes of a keyed archive written by plistlib. `body` is Python code that fills `objects`
// (which starts as ["$null"]) and `top`; it may use add(value) -> UID of the new entry,
// cls(name, *superclasses) -> UID of a class description, UID(n), and may replace `archive`
// (the whole property list) to write something that is not laid out as an archive.
inline Data plistlibArchive(const std::string& body) {
    const std::string path = temporaryDirectory() + "python.bplist";
    const std::string script = R"(
import plistlib, sys
from plistlib import UID
objects = ['$null']
top = {}
def add(value):
    objects.append(value)
    return UID(len(objects) - 1)
def cls(name, *superclasses):
    return add({'$classname': name, '$classes': [name, *superclasses, 'NSObject']})
archive = None
)" + body + R"(
if archive is None:
    archive = {'$archiver': 'NSKeyedArchiver', '$version': 100000, '$top': top, '$objects': objects}
with open(sys.argv[1], 'wb') as f: f.write(plistlib.dumps(archive, fmt=plistlib.FMT_BINARY, sort_keys=False))
)";
    std::remove(path.c_str());
    runPython(script, path);
    return readFile(path);
}

// An archivable class for the tests: a name, a count and an optional child, stored under its
// own keys. It decodes only when the name is a text.
class Shape final : public Object, public Coding {
  public:
    Shape(std::string name, std::int64_t sides, Value child = {})
        : name_(std::move(name)), sides_(sides), child_(std::move(child)) {}

    static ObjectPtr initWithCoder(Coder& coder) {
        auto name = coder.decodeString("name");
        if (!name) return nullptr;
        return std::make_shared<Shape>(*name, coder.decodeInteger("sides"),
                                       coder.decodeValue("child"));
    }

    void encodeWithCoder(Coder& coder) const override {
        coder.encodeString(name_, "name");
        coder.encodeInteger(sides_, "sides");
        if (!child_.isNil()) coder.encodeValue(child_, "child");
    }
    std::string classNameForCoder() const override { return "VNTestShape"; }
    std::vector<std::string> classHierarchyForCoder() const override {
        return {"VNTestShape", "VNTestFigure", "NSObject"};
    }

    bool isEqual(const Object& other) const override {
        const auto* shape = dynamic_cast<const Shape*>(&other);
        return shape && shape->name_ == name_ && shape->sides_ == sides_ && shape->child_ == child_;
    }

    const std::string& name() const { return name_; }
    std::int64_t sides() const { return sides_; }
    const Value& child() const { return child_; }

  private:
    std::string name_;
    std::int64_t sides_;
    Value child_;
};

inline const bool kShapeRegistered = Coding::registerClass("VNTestShape", &Shape::initWithCoder);

}  // namespace vn::testing
