#include "qt/QtServices.h"

#include "qt/BusyCursor.h"

namespace qncomm {

QtServices::QtServices(QWidget* parent)
    : desktop(parent), inputs(parent), files(parent), forms(parent, desktop) {
    BusyCursor::OfApplication();
}

} // namespace qncomm
