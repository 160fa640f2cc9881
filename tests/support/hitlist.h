// A hit sink that keeps every hit in order and stops at the engine's limit,
// as the window's and the terminal tool's sinks do.
#pragma once

#include <string>
#include <vector>

#include "core/search.h"

namespace ct::test {

class HitList : public HitSink {
public:
    bool Add(const std::string& hit) override {
        if (hits.size() >= kHitLimit) return false;
        hits.push_back(hit);
        return true;
    }
    std::size_t Count() const override { return hits.size(); }
    std::vector<std::string> hits;
};

}  // namespace ct::test
