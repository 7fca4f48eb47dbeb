#include "SimulatedMachineState.h"

namespace SimulatedMachineState {

std::recursive_mutex gMutex;
SMachineState* gState = nullptr;

}  // namespace SimulatedMachineState
