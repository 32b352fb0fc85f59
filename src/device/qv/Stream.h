#pragma once

#include <functional>

namespace qv {

/// The stream face of a component: delivers records between `start` and `stop` to every registered
/// callback, on threads of the library.
template <class Record>
class Stream {
public:
    virtual ~Stream() = default;
    virtual bool start() = 0;
    virtual bool stop() = 0;
    /// The id to unregister with; never -1 when it worked.
    virtual int registerCallback(std::function<void(const Record &)> callback) = 0;
    /// -1 and ids already gone are harmless.
    virtual void unregisterCallback(int id) = 0;
};

} // namespace qv
