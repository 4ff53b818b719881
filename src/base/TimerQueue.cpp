#include "base/TimerQueue.h"

namespace tendel {

TimerId TimerQueue::add(MonotonicInstant due, std::function<void()> task) {
    const TimerId id{++lastId_};
    tasks_.emplace(Key{due, id}, std::move(task));
    dueTimes_.emplace(id, due);
    return id;
}

void TimerQueue::remove(TimerId id) {
    const auto found = dueTimes_.find(id);
    if (found == dueTimes_.end()) return;
    tasks_.erase({found->second, id});
    dueTimes_.erase(found);
}

std::optional<MonotonicInstant> TimerQueue::nextDue() const {
    if (tasks_.empty()) return std::nullopt;
    return tasks_.begin()->first.first;
}

void TimerQueue::runDue(MonotonicInstant now) {
    const TimerId newest{lastId_};
    for (auto next = tasks_.begin(); next != tasks_.end() && next->first.first <= now;) {
        if (next->first.second > newest) {
            ++next;
            continue;
        }
        const auto task = std::move(next->second);
        dueTimes_.erase(next->first.second);
        tasks_.erase(next);
        task();
        next = tasks_.begin();  // the task may have removed or added any other
    }
}

}  // namespace tendel
