// The moment that this library's own calendar values hold.
#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <typeinfo>

#include "qmt/time/portable_time.h"
#include "time/calendar_fields.h"

namespace QMT {

// Keeps the count of seconds and the fields of one moment; both always describe the same moment. The count
// reads the fields as UTC, whatever they stand for.
class PortableTimeImp final : public PortableTimeImpInterface {
public:
    // Fields out of range are carried; each number is read as signed.
    PortableTimeImp(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                    unsigned int minute, unsigned int second);

    // `utcSeconds` since 1970-01-01 00:00:00.
    explicit PortableTimeImp(std::int64_t utcSeconds);

    // The moment with the fields of `other`.
    explicit PortableTimeImp(PortableTimeImpInterface const& other);

    // The same, and quick where `other` is one of these.
    static std::unique_ptr<PortableTimeImp> CopyOf(PortableTimeImpInterface const& other) {
        if (PortableTimeImp const* const own = AsOwn(other))
            return std::make_unique<PortableTimeImp>(*own);
        return std::make_unique<PortableTimeImp>(other);
    }

    // The count for the fields of `other`.
    static std::int64_t SecondsOf(PortableTimeImpInterface const& other) {
        PortableTimeImp const* const own = AsOwn(other);
        return own != nullptr ? own->seconds : PortableTimeImp(other).seconds;
    }

    // Moves the moment by so many seconds.
    void Shift(std::int64_t shift) {
        seconds += shift;
        ShiftFields(fields, shift, seconds);
    }

    int GetYear() const override;
    int GetMonth() const override;
    int GetDay() const override;
    int GetHour() const override;
    int GetMinute() const override;
    int GetSecond() const override;
    int GetDayOfWeek() const override;
    TimeSpanImpInterface* Difference(PortableTimeImpInterface const* other) const override;
    void Add(TimeSpanImpInterface const* span) override;
    void Subtract(TimeSpanImpInterface const* span) override;
    String LocalYMD() const override;
    String LocalHM() const override;

private:
    // Null when `value` is a client's own. Quicker than a `dynamic_cast`, since nothing derives from the
    // class.
    static PortableTimeImp const* AsOwn(PortableTimeImpInterface const& value) {
        return typeid(value) == typeid(PortableTimeImp) ? static_cast<PortableTimeImp const*>(&value)
                                                        : nullptr;
    }

    std::int64_t seconds;
    std::tm fields{};
};

} // namespace QMT
