#include "WindowMemory.h"

#include "common/QNError.h"

#include <QByteArray>
#include <QMainWindow>

namespace qnterm {
namespace {

constexpr const char* Section = "qnterm window";
constexpr int StateVersion = 1; ///< another number forgets where docks were

QByteArray Read(const qncomm::RegSettings& store, const char* key) {
    return QByteArray::fromBase64(QByteArray::fromStdString(store.ReadValue(Section, key, "")));
}

std::string Text(const QByteArray& bytes) {
    return bytes.toBase64().toStdString();
}

} // namespace

bool RestoreWindow(QMainWindow& window, const qncomm::RegSettings& store) {
    const QByteArray geometry = Read(store, "Geometry");
    const QByteArray state = Read(store, "State");
    if (!geometry.isEmpty()) window.restoreGeometry(geometry);
    return !state.isEmpty() && window.restoreState(state, StateVersion);
}

void KeepWindow(const QMainWindow& window, qncomm::RegSettings& store) {
    try {
        store.WriteValues({{Section, "Geometry", Text(window.saveGeometry())},
                           {Section, "State", Text(window.saveState(StateVersion))}});
    } catch (const qncomm::QNError&) { // NOLINT(bugprone-empty-catch): nothing else is lost
    }
}

} // namespace qnterm
