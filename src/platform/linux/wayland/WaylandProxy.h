#pragma once

#include <memory>

namespace tendel {

template <auto destroy>
struct DestroyProxy {
    void operator()(auto* proxy) const { destroy(proxy); }
};

// Owns a proxy of the compositor's; `destroy` is the protocol's request that ends it. For source
// files, beside the protocol's header.
template <class Proxy, void (*destroy)(Proxy*)>
using WaylandProxy = std::unique_ptr<Proxy, DestroyProxy<destroy>>;

}  // namespace tendel
