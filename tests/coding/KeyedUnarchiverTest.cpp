#include "vn/coding/KeyedUnarchiver.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "testing/KeyedArchiveTesting.h"
#include "vn/coding/KeyedArchiver.h"

namespace vn {
namespace {

using testing::plistlibArchive;
using testing::Shape;

std::string debugDescription(const ErrorPtr& error) {
    if (!error) return "(no error)";
    const std::string* text = error->userInfoValue(NSDebugDescriptionErrorKey).string();
    return text ? *text : error->description();
}

Value decoded(const Data& data) {
    ErrorPtr error;
    auto value = KeyedUnarchiver::unarchivedValue(data, &error);
    EXPECT_TRUE(value) << debugDescription(error);
    return value.value_or(Value{});
}

ErrorPtr decodingError(const Data& data) {
    ErrorPtr error;
    const auto value = KeyedUnarchiver::unarchivedValue(data, &error);
    EXPECT_FALSE(value) << "decoded " << value.value_or(Value{}).description();
    return error;
}

// A binary property list made of raw object encodings (references 4 bytes wide), object 0 on
// top, for input that no property-list writer produces.
Data craftedPropertyList(const std::vector<Data>& objects) {
    Data bytes{'b', 'p', 'l', 'i', 's', 't', '0', '0'};
    std::vector<std::uint64_t> offsets;
    for (const Data& object : objects) {
        offsets.push_back(bytes.size());
        bytes.insert(bytes.end(), object.begin(), object.end());
    }
    const std::uint64_t tableOffset = bytes.size();
    auto appendBigEndian = [&bytes](std::uint64_t value, int width) {
        for (int i = width - 1; i >= 0; --i)
            bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    for (const std::uint64_t offset : offsets) appendBigEndian(offset, 4);
    bytes.insert(bytes.end(), 6, 0);
    bytes.push_back(4);  // offset width
    bytes.push_back(4);  // reference width
    appendBigEndian(objects.size(), 8);
    appendBigEndian(0, 8);
    appendBigEndian(tableOffset, 8);
    return bytes;
}

Data arrayOfReferences(const std::vector<std::uint32_t>& references) {
    Data object{static_cast<std::uint8_t>(0xA0 | references.size())};
    for (const std::uint32_t reference : references) {
        for (int i = 3; i >= 0; --i)
            object.push_back(static_cast<std::uint8_t>(reference >> (8 * i)));
    }
    return object;
}

TEST(KeyedUnarchiver, ReadsWhatPlistlibWritesInThePlatformLayout) {
    const Data data = plistlibArchive(R"(
def array(class_uid, *elements):
    return add({'$class': class_uid, 'NS.objects': [add(e) if not isinstance(e, UID) else e for e in elements]})
mutable_array = cls('NSMutableArray', 'NSArray')
values = {
    'mutable array': array(mutable_array, 1, 2.5, True, 'x'),
    'set': array(cls('NSSet'), 'only'),
    'date': add({'$class': cls('NSDate'), 'NS.time': 1234.5}),
    'null': add({'$class': cls('NSNull')}),
    'mutable string': add({'$class': cls('NSMutableString', 'NSString'), 'NS.string': 'grün'}),
    'mutable data': add({'$class': cls('NSMutableData', 'NSData'), 'NS.data': b'\x01\x02'}),
    'decimal': add({'$class': cls('NSDecimalNumber', 'NSNumber', 'NSValue'), 'NS.exponent': -2, 'NS.length': 1,
                    'NS.negative': False, 'NS.compact': True, 'NS.mantissa.bo': 1,
                    'NS.mantissa': (314).to_bytes(2, 'little') + bytes(14)}),
    'huge': add(2**64 - 1),
    'negative': add(-2**63),
    'empty dictionary': add({'$class': cls('NSMutableDictionary', 'NSDictionary'), 'NS.keys': [], 'NS.objects': []}),
    'bridged dictionary': add({'$class': cls('__NSCFDictionary', 'NSMutableDictionary', 'NSDictionary'),
                               'NS.keys': [add('k')], 'NS.objects': [add('v')]}),
    'nil': UID(0),
}
keys = [add(k) for k in values]
top['root'] = add({'$class': cls('NSDictionary'), 'NS.keys': keys, 'NS.objects': list(values.values())})
top['inline flag'] = True
)");
    Value::Dictionary expected{
        {"mutable array", Value::Array{1, 2.5, true, "x"}},
        {"set", Value::Array{"only"}},
        {"date", Date{1234.5}},
        {"null", Value::null()},
        {"mutable string", "grün"},
        {"mutable data", Data{1, 2}},
        {"decimal", Decimal::parse("3.14").value()},
        {"huge", std::numeric_limits<std::uint64_t>::max()},
        {"negative", std::numeric_limits<std::int64_t>::min()},
        {"empty dictionary", Value::Dictionary{}},
        {"bridged dictionary", Value::Dictionary{{"k", "v"}}},
        {"nil", Value{}},
    };
    EXPECT_EQ(decoded(data), Value(expected));

    KeyedUnarchiver unarchiver(data);
    EXPECT_TRUE(unarchiver.containsValueForKey("inline flag"));
    EXPECT_EQ(unarchiver.decodeValue("inline flag"), Value(true));
    EXPECT_EQ(unarchiver.decodeValue("absent"), Value{});
    EXPECT_FALSE(unarchiver.containsValueForKey("absent"));
}

TEST(KeyedUnarchiver, RebuildsRegisteredClassesAndTheirSubclassesThroughTheClassChain) {
    const Data data = plistlibArchive(R"(
shape = cls('VNTestShape')
inner = add({'$class': shape, 'name': add('inner'), 'sides': 3})
square = add({'$class': cls('VNTestSquare', 'VNTestShape'), 'name': add('square'), 'sides': 4, 'child': inner})
top['root'] = add({'$class': cls('NSArray'), 'NS.objects': [square, inner]})
)");
    const Value root = decoded(data);
    ASSERT_TRUE(root.isArray());
    const auto square = (*root.array())[0].objectAs<Shape>();
    const auto inner = (*root.array())[1].objectAs<Shape>();
    ASSERT_TRUE(square && inner);
    EXPECT_EQ(square->name(), "square");
    EXPECT_EQ(square->sides(), 4);
    EXPECT_EQ(inner->name(), "inner");
    EXPECT_EQ(square->child().object(), inner)
        << "the entry referenced twice decodes to one object";
}

TEST(KeyedUnarchiver, SetClassTakesPrecedenceOverTheRegistry) {
    const Data data =
        *KeyedArchiver::archivedDataWithRootObject(std::make_shared<Shape>("hexagon", 6));
    KeyedUnarchiver unarchiver(data);
    unarchiver.setClass("VNTestShape", [](Coder& coder) -> ObjectPtr {
        return std::make_shared<Shape>("replaced " + coder.decodeString("name").value_or("?"), 0);
    });
    const auto shape = unarchiver.decodeValue("root").objectAs<Shape>();
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->name(), "replaced hexagon");
}

TEST(KeyedUnarchiver, ReportsDecodersThatAnswerNoObject) {
    const Data nameless =
        plistlibArchive("top['root'] = add({'$class': cls('VNTestShape'), 'sides': 4})");
    EXPECT_NE(debugDescription(decodingError(nameless))
                  .find("the decoder of class (VNTestShape) answered no object"),
              std::string::npos);

    const Data data =
        *KeyedArchiver::archivedDataWithRootObject(std::make_shared<Shape>("pentagon", 5));
    KeyedUnarchiver unarchiver(data);
    const ErrorPtr reason = Error::make("test", 42);
    unarchiver.setClass("VNTestShape", [&reason](Coder& coder) -> ObjectPtr {
        coder.failWithError(reason);
        return nullptr;
    });
    EXPECT_EQ(unarchiver.decodeValue("root"), Value{});
    EXPECT_EQ(unarchiver.error(), reason) << "the decoder's own error is the one reported";
}

TEST(KeyedUnarchiver, UnarchivedObjectOfClassChecksTheRootsClass) {
    const Data shapeArchive =
        *KeyedArchiver::archivedDataWithRootObject(std::make_shared<Shape>("circle", 0));
    ErrorPtr error;
    const auto shape = KeyedUnarchiver::unarchivedObjectOfClass<Shape>(shapeArchive, &error);
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->name(), "circle");
    EXPECT_EQ(error, nullptr);

    const Data textArchive = *KeyedArchiver::archivedDataWithRootObject("not a shape");
    EXPECT_EQ(KeyedUnarchiver::unarchivedObjectOfClass<Shape>(textArchive, &error), nullptr);
    ASSERT_TRUE(error);
    EXPECT_NE(debugDescription(error).find("not of the requested class"), std::string::npos);
}

TEST(KeyedUnarchiver, RejectsMalformedArchivesWithTheReason) {
    const Data valid = *KeyedArchiver::archivedDataWithRootObject(Value::Array{1, 2, 3});
    const std::vector<std::tuple<std::string, Data, std::string>> cases = {
        {"empty bytes", Data{}, "not a readable binary property list"},
        {"text", Data{'h', 'e', 'l', 'l', 'o'}, "not a readable binary property list"},
        {"truncated archive",
         Data(valid.begin(), valid.begin() + static_cast<long>(valid.size() / 2)),
         "not a readable binary property list"},
        {"XML property list", Data{'<', '?', 'x', 'm', 'l'}, "not a readable binary property list"},
        {"not a dictionary", plistlibArchive("archive = [1, 2]"), "not a dictionary"},
        {"other archiver",
         plistlibArchive(
             "archive = {'$archiver': 'Other', '$version': 1, '$top': {}, '$objects': ['$null']}"),
         "\"$archiver\""},
        {"version is text",
         plistlibArchive("archive = {'$archiver': 'NSKeyedArchiver', '$version': 'x', '$top': {}, "
                         "'$objects': ['$null']}"),
         "\"$version\""},
        {"no top",
         plistlibArchive(
             "archive = {'$archiver': 'NSKeyedArchiver', '$version': 1, '$objects': ['$null']}"),
         "\"$top\""},
        {"objects not an array",
         plistlibArchive("archive = {'$archiver': 'NSKeyedArchiver', '$version': 1, '$top': {}, "
                         "'$objects': 'x'}"),
         "\"$objects\""},
        {"no $null entry", plistlibArchive("objects[0] = 'first'\ntop['root'] = UID(0)"),
         "\"$null\""},
        {"no root", plistlibArchive("top['other'] = add('x')"), "no \"root\""},
        {"UID out of range", plistlibArchive("top['root'] = UID(99)"), "UID 99 is outside"},
        {"array containing itself", plistlibArchive(R"(
entry = {'$class': cls('NSArray')}
uid = add(entry)
entry['NS.objects'] = [uid]
top['root'] = uid)"),
         "contains itself"},
        {"entry without class", plistlibArchive("top['root'] = add({'NS.objects': []})"),
         "no \"$class\""},
        {"class reference to nil", plistlibArchive("top['root'] = add({'$class': UID(0)})"),
         "outside"},
        {"class without name",
         plistlibArchive("top['root'] = add({'$class': add({'$classes': ['X']})})"),
         "no \"$classname\""},
        {"class chain not names",
         plistlibArchive(
             "top['root'] = add({'$class': add({'$classname': 'NSNull', '$classes': [1]})})"),
         "other than a name"},
        {"unknown class", plistlibArchive("top['root'] = add({'$class': cls('MysteryThing')})"),
         "cannot decode object of class (MysteryThing)"},
        {"inline array entry", plistlibArchive("top['root'] = add([1, 2])"),
         "neither a value nor an object"},
        {"array without elements", plistlibArchive("top['root'] = add({'$class': cls('NSArray')})"),
         "NSArray has no \"NS.objects\""},
        {"elements not an array",
         plistlibArchive("top['root'] = add({'$class': cls('NSArray'), 'NS.objects': 5})"),
         "is not an array"},
        {"element is a dictionary",
         plistlibArchive("top['root'] = add({'$class': cls('NSArray'), 'NS.objects': [{'a': 1}]})"),
         "holds a dictionary"},
        {"keys and values differ in number",
         plistlibArchive("top['root'] = add({'$class': cls('NSDictionary'), 'NS.keys': [add('a')], "
                         "'NS.objects': []})"),
         "1 keys but 0 values"},
        {"key that is not a text",
         plistlibArchive("top['root'] = add({'$class': cls('NSDictionary'), 'NS.keys': [add(5)], "
                         "'NS.objects': [add(1)]})"),
         "key that is not a text"},
        {"date with a text time",
         plistlibArchive("top['root'] = add({'$class': cls('NSDate'), 'NS.time': 'noon'})"),
         "\"NS.time\" of NSDate is not a number"},
        {"string wrapper holding a number",
         plistlibArchive("top['root'] = add({'$class': cls('NSMutableString'), 'NS.string': 5})"),
         "wrong kind"},
        {"decimal with too many words",
         plistlibArchive(R"(top['root'] = add({'$class': cls('NSDecimalNumber'),
    'NS.exponent': 0, 'NS.length': 9, 'NS.negative': False, 'NS.mantissa': bytes(16)}))"),
         "does not hold a valid decimal"},
        {"objects nested beyond the limit", plistlibArchive(R"(
array_class = cls('NSArray')
previous = add('bottom')
for _ in range(300):
    previous = add({'$class': array_class, 'NS.objects': [previous]})
top['root'] = previous)"),
         "nested more than 256 levels"},
        {"property list container containing itself", craftedPropertyList({arrayOfReferences({0})}),
         "contains itself"},
        {"text holding a NUL", plistlibArchive("top['root'] = add('a\\x00b')"), "NUL"},
        {"ASCII text with a high byte", craftedPropertyList({Data{0x54, 'c', 'a', 'f', 0xE9}}),
         "byte above 127"},
        {"UTF-16 text with a lone surrogate", craftedPropertyList({Data{0x61, 0xD8, 0x00}}),
         "lone surrogate"},
        {"property list reference out of range", craftedPropertyList({arrayOfReferences({7})}),
         "outside the object table"},
    };
    for (const auto& [name, data, reason] : cases) {
        const ErrorPtr error = decodingError(data);
        ASSERT_TRUE(error) << name;
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain) << name;
        EXPECT_NE(debugDescription(error).find(reason), std::string::npos)
            << name << ": " << debugDescription(error);
    }
}

TEST(KeyedUnarchiver, RefusesPropertyListsThatWouldOverwhelmThePropertyListReader) {
    // 100,000 arrays each holding the next: read recursively, this would exhaust the stack.
    std::vector<Data> deep;
    for (std::uint32_t i = 0; i < 100000; ++i) deep.push_back(arrayOfReferences({i + 1}));
    deep.push_back(Data{0x09});
    EXPECT_NE(debugDescription(decodingError(craftedPropertyList(deep))).find("nested too deeply"),
              std::string::npos);

    // 40 arrays each holding the next one twice: a few hundred bytes that expand to 2^40 nodes.
    std::vector<Data> doubling;
    for (std::uint32_t i = 0; i < 40; ++i) doubling.push_back(arrayOfReferences({i + 1, i + 1}));
    doubling.push_back(Data{0x09});
    EXPECT_NE(debugDescription(decodingError(craftedPropertyList(doubling)))
                  .find("expands beyond its size"),
              std::string::npos);
}

// Archive bytes of a value that exercises every entry type.
Data richArchive() {
    auto inner = std::make_shared<Shape>("inner", 3);
    const Value root = Value::Dictionary{
        {"shapes", Value::Array{std::make_shared<Shape>("outer", 4, Value(inner)), inner}},
        {"numbers", Value::Array{1, -2, 3.5, true, std::numeric_limits<std::uint64_t>::max(),
                                 Decimal::parse("9.99").value()}},
        {"text", "grüße"},
        {"data", Data{1, 2, 3}},
        {"date", Date{100}},
        {"null", Value::null()},
        {"nested", Value::Dictionary{{"a", Value::Array{Value::Dictionary{{"b", "c"}}}}}},
    };
    return *KeyedArchiver::archivedDataWithRootObject(root);
}

TEST(KeyedUnarchiver, AnswersAValueOrAnErrorForThousandsOfMutatedArchives) {
    const Data original = richArchive();
    std::mt19937 random(20240607);
    auto position = [&](std::size_t size) {
        return std::uniform_int_distribution<std::size_t>(0, size - 1)(random);
    };
    // Positions of one-byte UIDs (marker 0x80 followed by the reference) in the object area.
    std::vector<std::size_t> uidPositions;
    for (std::size_t i = 8; i + 1 < original.size() - 32; ++i) {
        if (original[i] == 0x80) uidPositions.push_back(i + 1);
    }
    ASSERT_GT(uidPositions.size(), 10u);

    int decodedCount = 0;
    int failedCount = 0;
    for (int round = 0; round < 4000; ++round) {
        Data mutated = original;
        switch (round % 5) {
            case 0:
                mutated[position(mutated.size())] ^=
                    static_cast<std::uint8_t>(1u << (random() % 8));
                break;
            case 1:
                for (int i = 0; i < 3; ++i)
                    mutated[position(mutated.size())] = static_cast<std::uint8_t>(random());
                break;
            case 2:
                mutated.resize(position(mutated.size()));
                break;
            case 3:
                std::swap(mutated[uidPositions[position(uidPositions.size())]],
                          mutated[uidPositions[position(uidPositions.size())]]);
                break;
            case 4:
                mutated[uidPositions[position(uidPositions.size())]] =
                    static_cast<std::uint8_t>(random() % 64);
                break;
        }
        ErrorPtr error;
        const auto value = KeyedUnarchiver::unarchivedValue(mutated, &error);
        ASSERT_NE(value.has_value(), error != nullptr) << "round " << round;
        (value ? decodedCount : failedCount)++;
        ErrorPtr describeError;
        const auto tree = KeyedUnarchiver::describeArchive(mutated, &describeError);
        ASSERT_NE(tree.has_value(), describeError != nullptr) << "round " << round;
    }
    // Both outcomes occur, so the mutations reach past the first check.
    EXPECT_GT(decodedCount, 100);
    EXPECT_GT(failedCount, 100);
}

TEST(KeyedUnarchiver, DescribesArchivesAsATreeWithoutKnowingTheirClasses) {
    const Data data = plistlibArchive(R"(
gadget = add({'$class': cls('MysteryGadget'), 'label': add('dial'), 'level': 7, '$$price': add(2.5)})
top['root'] = add({'$class': cls('NSDictionary'), 'NS.keys': [add('first'), add('again')],
                   'NS.objects': [gadget, gadget]})
top['when'] = add({'$class': cls('NSDate'), 'NS.time': 0.0})
)");
    ErrorPtr error;
    const auto tree = KeyedUnarchiver::describeArchive(data, &error);
    ASSERT_TRUE(tree) << debugDescription(error);
    const std::string expected =
        "root = NSDictionary #8 {\n"
        "    \"first\" = MysteryGadget #4 {\n"
        "        label = \"dial\"\n"
        "        level = 7\n"
        "        $price = 2.5\n"
        "    }\n"
        "    \"again\" = MysteryGadget #4 (shown above)\n"
        "}\n"
        "when = NSDate #10 2001-01-01 00:00:00 +0000\n";
    EXPECT_EQ(*tree, expected);
    EXPECT_FALSE(KeyedUnarchiver::unarchivedValue(data))
        << "decoding needs the class; describing does not";

    EXPECT_FALSE(KeyedUnarchiver::describeArchive(Data{'x'}, &error));
    EXPECT_NE(debugDescription(error).find("not a readable binary property list"),
              std::string::npos);
}

TEST(KeyedUnarchiverDeathTest, EncodingOnAnUnarchiverStopsTheProcess) {
    const Data data = *KeyedArchiver::archivedDataWithRootObject(1);
    EXPECT_DEATH(
        {
            KeyedUnarchiver unarchiver(data);
            unarchiver.encodeBool(true, "x");
        },
        "encodeBool called on an unarchiver");
}

}  // namespace
}  // namespace vn
