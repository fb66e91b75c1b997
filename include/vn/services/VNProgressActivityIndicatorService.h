// VNProgressActivityIndicatorService: the host's service for the progress-activity indicator (a
// blocking progress display for long operations).
//
// Its members belong to the host and to the layers above this library; the library only keeps
// the registered instance in VNFoundationServices and hands it to whoever asks. A host
// implementation derives from this class and adds what its callers need.
#pragma once

namespace vn {

class VNProgressActivityIndicatorService {
  public:
    virtual ~VNProgressActivityIndicatorService() = default;
};

}  // namespace vn
