#include "FoundDisplay.h"

std::string DisplayModelName(const std::string& name_I) {
    static const std::string kMaker = "Velor ";
    return name_I.rfind(kMaker, 0) == 0 && name_I.size() > kMaker.size() ? name_I.substr(kMaker.size())
                                                                         : name_I;
}
