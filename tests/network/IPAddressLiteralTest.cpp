#include "vn/network/IPAddressLiteral.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

using Family = IPAddressLiteral::Family;

TEST(IPAddressLiteral, TellsAddressesInEveryWrittenFormFromNames) {
    struct Case {
        std::string host;
        std::optional<Family> family;  // absent: not a literal
        std::string address;
        std::optional<std::string> zone;
    };
    const Case cases[] = {
        {"127.0.0.1", Family::ipv4, "127.0.0.1", std::nullopt},
        {"192.168.1.20", Family::ipv4, "192.168.1.20", std::nullopt},
        {"0.0.0.0", Family::ipv4, "0.0.0.0", std::nullopt},
        {"255.255.255.255", Family::ipv4, "255.255.255.255", std::nullopt},
        {"::1", Family::ipv6, "::1", std::nullopt},
        {"[::1]", Family::ipv6, "::1", std::nullopt},
        {"2001:db8::8:800:200c:417a", Family::ipv6, "2001:db8::8:800:200c:417a", std::nullopt},
        {"::ffff:10.0.0.1", Family::ipv6, "::ffff:10.0.0.1", std::nullopt},
        {"fe80::1%en0", Family::ipv6, "fe80::1", "en0"},
        {"fe80::1%25en0", Family::ipv6, "fe80::1", "en0"},
        {"[fe80::1%25wlan0]", Family::ipv6, "fe80::1", "wlan0"},
        {"[fe80::1%3]", Family::ipv6, "fe80::1", "3"},
        {"fe80::1%25", Family::ipv6, "fe80::1", "25"},
        // Names and broken forms.
        {"", std::nullopt, "", std::nullopt},
        {"localhost", std::nullopt, "", std::nullopt},
        {"printer.local", std::nullopt, "", std::nullopt},
        {"256.0.0.1", std::nullopt, "", std::nullopt},
        {"127.1", std::nullopt, "", std::nullopt},
        {"1.2.3.4.5", std::nullopt, "", std::nullopt},
        {"0x7f.0.0.1", std::nullopt, "", std::nullopt},
        {" 127.0.0.1", std::nullopt, "", std::nullopt},
        {"127.0.0.1 ", std::nullopt, "", std::nullopt},
        {"[127.0.0.1]", std::nullopt, "", std::nullopt},
        {"127.0.0.1%en0", std::nullopt, "", std::nullopt},
        {"[::1", std::nullopt, "", std::nullopt},
        {"::1]", std::nullopt, "", std::nullopt},
        {"[]", std::nullopt, "", std::nullopt},
        {"[", std::nullopt, "", std::nullopt},
        {"[[::1]]", std::nullopt, "", std::nullopt},
        {"fe80::1%", std::nullopt, "", std::nullopt},
        {"fe80::1%e n0", std::nullopt, "", std::nullopt},
        {"fe80::1%en0%1", std::nullopt, "", std::nullopt},
        {"2001:db8::g", std::nullopt, "", std::nullopt},
        {"1:2:3:4:5:6:7:8:9", std::nullopt, "", std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.host);
        const auto literal = IPAddressLiteral::parse(c.host);
        EXPECT_EQ(isIPAddressLiteral(c.host), c.family.has_value());
        ASSERT_EQ(literal.has_value(), c.family.has_value());
        if (!literal) continue;
        EXPECT_EQ(literal->family, *c.family);
        EXPECT_EQ(literal->address, c.address);
        EXPECT_EQ(literal->zone, c.zone);
    }
}

TEST(IPAddressLiteral, GivesNetworkOrderBytesAndTheHostTextWithoutBrackets) {
    const auto ipv4 = IPAddressLiteral::parse("192.168.1.20");
    ASSERT_TRUE(ipv4);
    const std::array<std::uint8_t, 16> ipv4Bytes{192, 168, 1, 20};
    EXPECT_EQ(ipv4->bytes, ipv4Bytes);
    EXPECT_EQ(ipv4->hostText(), "192.168.1.20");

    const auto loopback = IPAddressLiteral::parse("[::1]");
    ASSERT_TRUE(loopback);
    std::array<std::uint8_t, 16> loopbackBytes{};
    loopbackBytes[15] = 1;
    EXPECT_EQ(loopback->bytes, loopbackBytes);
    EXPECT_EQ(loopback->hostText(), "::1");

    const auto zoned = IPAddressLiteral::parse("[fe80::a:b%25en0]");
    ASSERT_TRUE(zoned);
    const std::array<std::uint8_t, 16> zonedBytes{0xfe, 0x80, 0, 0, 0, 0,   0, 0,
                                                  0,    0,    0, 0, 0, 0xa, 0, 0xb};
    EXPECT_EQ(zoned->bytes, zonedBytes);
    EXPECT_EQ(zoned->hostText(), "fe80::a:b%en0");
}

}  // namespace
}  // namespace vn
