// vn::Coding: the interface of classes that can be written to and rebuilt from a keyed
// archive, and the process-wide registry that maps archived class names to decoders.
//
// An archivable class derives from vn::Object and vn::Coding. Encoding asks the object for
// its archived class name and class chain ("$classname" / "$classes" in the archive) and lets
// it write its fields with encodeWithCoder(). Decoding finds the decoder registered for the
// archived class name and hands it a coder positioned on the object's fields.
//
// Register a class once, typically from a namespace-scope initialiser in its own source file:
//
//     static const bool registered = vn::Coding::registerClass(
//         "MyShape", [](vn::Coder& coder) -> vn::ObjectPtr { return MyShape::initWithCoder(coder);
//         });
//
// The registry is safe to use from any thread and during static initialisation.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/coding/Coder.h"
#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

// Rebuilds an object from the coder's current fields. Answering null means "decoding fails":
// the decoder should call coder.failWithError() with its reason first; when it does not, the
// unarchiver records a generic "cannot decode object of class" error.
using CodingDecoder = std::function<ObjectPtr(Coder& coder)>;

class Coding {
  public:
    virtual ~Coding() = default;

    // Writes the object's fields to coder.
    virtual void encodeWithCoder(Coder& coder) const = 0;
    // The archived class name ("$classname"), under which the decoder is registered.
    virtual std::string classNameForCoder() const = 0;
    // The archived class chain ("$classes"), most derived first. By default the class name
    // followed by "NSObject", the platform's root class.
    virtual std::vector<std::string> classHierarchyForCoder() const;

    // Registers decoder under className, replacing an earlier registration. Returns true so
    // it can initialise a namespace-scope constant.
    static bool registerClass(std::string className, CodingDecoder decoder);
    // The decoder registered under className; an empty function when there is none.
    static CodingDecoder decoderForClassName(std::string_view className);
};

// Whether value is keyed-codable, the counterpart of the platform's keyed-coding conformance:
// true for every kind (nil, the null marker, numbers, texts, data, dates) except objects that
// do not implement vn::Coding, and for arrays and dictionaries whose elements are all
// keyed-codable. It looks at kinds only: a keyed-codable value can still fail to archive for
// its contents (see KeyedArchiver.h). Nesting deeper than KeyedArchiver::kMaxNestingDepth
// answers false, so the check itself never recurses without bound.
bool isKeyedCodable(const Value& value);

}  // namespace vn
