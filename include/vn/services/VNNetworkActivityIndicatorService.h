// VNNetworkActivityIndicatorService: the host's service for the network-activity indicator (the
// spinner that tells the user the application is using the network).
//
// Its members belong to the host and to the layers above this library; the library only keeps
// the registered instance in VNFoundationServices and hands it to whoever asks. A host
// implementation derives from this class and adds what its callers need.
#pragma once

namespace vn {

class VNNetworkActivityIndicatorService {
  public:
    virtual ~VNNetworkActivityIndicatorService() = default;
};

}  // namespace vn
