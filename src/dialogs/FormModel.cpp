#include "dialogs/FormModel.h"

namespace qncomm {

bool FormModel::QueryUnload(UnloadMode /*mode*/) {
    return true;
}

bool FormModel::Unload(UnloadMode mode) {
    if (mOpen && QueryUnload(mode)) {
        mOpen = false;
        Closed.Raise();
    }
    return !mOpen;
}

} // namespace qncomm
