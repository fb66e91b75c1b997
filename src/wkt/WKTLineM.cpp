#include "vn/wkt/WKTLineM.h"

#include <typeinfo>

#include "WKTMembers.h"

namespace vn {
namespace {

constexpr wkt_internal::MemberRules kLineRules{
    "WKTLineM [setListLines]",
    "Parameter points is nil",
    "Parameter lines have a class that is not WKTLine",
    "Parameter lines have WKTLine with different dimensions",
};

}  // namespace

WKTLineM::WKTLineM() : WKTGeometry("MultiLine") {}

WKTLineM::WKTLineM(std::vector<WKTLinePtr> lines) : WKTLineM() {
    setListLines(std::move(lines));
}

void WKTLineM::setListLines(std::vector<WKTLinePtr> lines) {
    wkt_internal::appendMembers(lines_, *this, std::move(lines), kLineRules);
}

void WKTLineM::setListLines(const Value& lines) {
    wkt_internal::appendMembers(lines_, *this, lines, kLineRules);
}

void WKTLineM::removeListLines() {
    lines_.clear();
    setDimensions(0);
}

void WKTLineM::copyTo(const std::shared_ptr<WKTLineM>& other) const {
    if (!other) wkt_internal::raise("WKTLineM [copyTo]", "Parameter Multi Line is nil");
    copyKindTo(*other);
    other->lines_ = wkt_internal::copiedMembers(lines_);
}

std::string WKTLineM::description() const {
    return wkt_internal::joinedDescriptions(lines_, true);
}

std::string WKTLineM::toWKT() const {
    return wkt_internal::listWKT(lines_.size(), dimensions(), "MULTILINESTRING", "MULTILINESTRINGZ",
                                 "MULTILINESTRING EMPTY", description());
}

std::shared_ptr<WKTGeometry> WKTLineM::copy() const {
    auto multiLine = std::make_shared<WKTLineM>();
    copyTo(multiLine);
    multiLine->setGis(gis());
    return multiLine;
}

bool WKTLineM::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& multiLine = static_cast<const WKTLineM&>(other);
    return dimensions() == multiLine.dimensions() &&
           wkt_internal::membersEqual(lines_, multiLine.lines_);
}

std::size_t WKTLineM::hash() const {
    return wkt_internal::membersHash(dimensions(), lines_);
}

MapMultiPolyline WKTLineM::toMapMultiLine() const {
    MapMultiPolyline multiPolyline;
    multiPolyline.polylines.reserve(lines_.size());
    for (const auto& line : lines_) multiPolyline.polylines.push_back(line->toMapLine());
    return multiPolyline;
}

}  // namespace vn
