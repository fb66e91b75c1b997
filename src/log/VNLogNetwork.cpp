// The log's network tracing: requests and responses as JSON records, for the local log and for
// the host's structured logger.
#include <map>
#include <memory>
#include <string>

#include "platform/internal/Utf8.h"
#include "vn/log/VNLog.h"
#include "vn/platform/StringEncoding.h"
#include "vn/values/JSON.h"

namespace vn {
namespace {

// Where a record will go. The local log is asked before anything is built, so that a closed
// log costs only the switch checks.
struct Destinations {
    bool local = false;
    std::shared_ptr<VNLoggerService> service;

    bool anyOpen() const { return local || service != nullptr; }
};

Destinations openDestinations() {
    Destinations destinations;
    destinations.local = VNLog::isLogResponsesEnabled();
    auto service = VNLog::loggerService();
    if (service && service->isLogEnabled() &&
        service->logLevelForType(VNLoggerType::network) != VNLoggerLevel::off) {
        destinations.service = std::move(service);
    }
    return destinations;
}

void send(const Destinations& destinations, std::string_view title, Value::Dictionary record) {
    const Value titled(Value::Dictionary{{std::string(title), Value(std::move(record))}});
    if (destinations.local && VNLog::hasActiveSink()) {
        VNLog::writeMessage(jsonString(titled, JSONWritingStyle::pretty), true);
    }
    if (destinations.service) {
        destinations.service->logMessage(jsonString(titled, JSONWritingStyle::compact),
                                         VNLoggerType::network, VNLoggerLevel::debug, false);
    }
}

Value textOrNull(const std::optional<std::string>& text) {
    return text ? Value(*text) : Value::null();
}

Value urlOf(const URLRequest& request) {
    return request.url() ? Value(request.url()->absoluteString()) : Value::null();
}

Value headersOf(const std::map<std::string, std::string>& fields) {
    Value::Dictionary headers;
    for (const auto& [name, value] : fields) headers.emplace(name, Value(value));
    return Value(std::move(headers));
}

std::string_view asText(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

std::optional<std::string> utf8Text(const Data& data) {
    const std::string_view text = asText(data);
    if (!platform_internal::isValidUtf8(text)) return std::nullopt;
    return std::string(text);
}

// The request's body as text; undecodable bytes are logged as "", not hidden behind null,
// so that the trace still shows that a body was sent.
Value bodyOf(const URLRequest& request) {
    const auto& body = request.httpBody();
    if (!body) return Value::null();
    return Value(utf8Text(*body).value_or(std::string()));
}

std::optional<std::string> decodedResponseData(const URLResponse& response, const Data& data) {
    const StringEncoding encoding = response.vnStringEncoding().value_or(NSUTF8StringEncoding);
    if (encoding == NSUTF8StringEncoding) return utf8Text(data);
    return stringFromData(data, encoding);
}

Value::Dictionary responseRecord(const URLResponse& response, const URLRequest& request,
                                 std::size_t bytes) {
    Value::Dictionary record{
        {"url", urlOf(request)},
        {"bytes", Value(static_cast<std::int64_t>(bytes))},
    };
    if (const auto* http = dynamic_cast<const HTTPURLResponse*>(&response)) {
        record.emplace("statusCode", Value(http->statusCode()));
        record.emplace("headers", headersOf(http->allHeaderFields()));
    }
    return record;
}

}  // namespace

void VNLog::logURLRequestIfEnabled(const URLRequest& request) {
    const Destinations destinations = openDestinations();
    if (!destinations.anyOpen()) return;
    const auto headers = request.allHTTPHeaderFields();
    send(destinations, "request",
         Value::Dictionary{
             {"url", urlOf(request)},
             {"method", textOrNull(request.httpMethod())},
             {"headers", headers ? headersOf(*headers) : Value::null()},
             {"body", bodyOf(request)},
         });
}

void VNLog::logURLResponseIfEnabled(const URLResponse& response, const URLRequest& request,
                                    const std::optional<Data>& data) {
    const Destinations destinations = openDestinations();
    if (!destinations.anyOpen()) return;
    Value::Dictionary record = responseRecord(response, request, data ? data->size() : 0);
    if (isLogResponsesBodyEnabled()) {
        const auto text = data ? decodedResponseData(response, *data) : std::nullopt;
        record.emplace("data", textOrNull(text));
    }
    send(destinations, "response", std::move(record));
}

void VNLog::logURLResponseIfEnabled(const URLResponse& response, const URLRequest& request,
                                    std::string_view dataPath) {
    const Destinations destinations = openDestinations();
    if (!destinations.anyOpen()) return;
    Value::Dictionary record = responseRecord(response, request, 0);
    if (isLogResponsesBodyEnabled()) {
        record.emplace("data", Value("Downloaded data saved to path " + std::string(dataPath)));
    }
    send(destinations, "response", std::move(record));
}

}  // namespace vn
