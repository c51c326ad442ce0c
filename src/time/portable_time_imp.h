// The moment that this library's own calendar values hold.
#pragma once

#include <cstdint>
#include <ctime>

#include "qmt/time/portable_time.h"

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
    void SetSeconds(std::int64_t newSeconds);

    std::int64_t seconds;
    std::tm fields{};
};

} // namespace QMT
