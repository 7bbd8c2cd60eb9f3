// The limits of a process that count for cameras: real-time priority and locked memory.
#ifndef KXHOST_DOCTOR_LIMITS_H
#define KXHOST_DOCTOR_LIMITS_H

#include "doctor/doctor_check.h"
#include "doctor/doctor_needs.h"
#include "doctor/doctor_process.h"

namespace kxhost {

Check judgeRealTimePriority(const ProcessFacts& process, const DoctorNeeds& needs);
Check judgeLockedMemory(const ProcessFacts& process, const DoctorNeeds& needs);

} // namespace kxhost

#endif
