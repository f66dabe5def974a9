#pragma once

#include <functional>
#include <memory>
#include <string>

namespace qncomm::testing {

/// A virtual printer that a link reaches over some kind of line, for as long as the object lives.
class ServedPrinter {
  public:
    virtual ~ServedPrinter() = default;
    virtual std::string Address() const = 0;
};

/// The kinds of line; sPrinter is what follows "sim:" in an address.
std::unique_ptr<ServedPrinter> PrinterInProcess(const std::string& sPrinter);
std::unique_ptr<ServedPrinter> PrinterOnPty(const std::string& sPrinter);
std::unique_ptr<ServedPrinter> PrinterOnTcp(const std::string& sPrinter);
std::unique_ptr<ServedPrinter> PrinterOnRfc2217(const std::string& sPrinter);

} // namespace qncomm::testing
