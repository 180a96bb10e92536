// Private: what adds up from scan to scan, such as where the points of each begin, for any scan, in
// memory that hardly grows with the run.
#ifndef FOLD_P_H
#define FOLD_P_H

#include <QtGlobal>

#include <cstddef>
#include <vector>

// A value for each scan, of which `Step` makes the next one: step(scan, value of the scan) is the value
// of the scan behind it. One value in a thousand is kept, so that any scan is near to one, and the last
// one, so that those who go from front to back take one step a scan.
template <class Value> class Fold
{
public:
    explicit Fold(Value first) : kept_{first}, lastValue_(first) { }

    // Returns the value of a scan. Every call has to come with the same steps.
    template <class Step> Value at(qint32 scan, const Step &step)
    {
        const std::size_t wanted = std::size_t(scan) / distance;
        const std::size_t nearest = wanted < kept_.size() ? wanted : kept_.size() - 1;
        qint32 at = qint32(nearest * distance);
        Value value = kept_[nearest];
        if (last_ <= scan && last_ > at) {
            at = last_;
            value = lastValue_;
        }
        while (at < scan) {
            value = step(at, value);
            ++at;
            if (std::size_t(at) == kept_.size() * distance)
                kept_.push_back(value);
        }
        last_ = scan;
        lastValue_ = value;
        return value;
    }

private:
    static constexpr std::size_t distance = 1024;

    std::vector<Value> kept_;
    qint32 last_ = 0;
    Value lastValue_;
};

#endif // FOLD_P_H
