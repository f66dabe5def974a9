#include "FileCommand.h"

#include "FileActions.h"

#include <array>

namespace qnterm {
namespace {

constexpr unsigned BitOf(DeviceKind kind) {
    return 1U << static_cast<unsigned>(kind);
}

constexpr unsigned OnFiles = BitOf(DeviceKind::Files);
constexpr unsigned OnFonts = BitOf(DeviceKind::Fonts);
constexpr unsigned OnImages = BitOf(DeviceKind::Images);
constexpr unsigned Everywhere = OnFiles | OnFonts | OnImages;

using Device = DeviceListing;
using Names = std::vector<std::string>;
using Takes = FileCommand::Takes;

constexpr std::array Commands = {
    FileCommand{"send", "&Send…", "Send files of this computer to the printer", "Ins", Everywhere,
                Takes::None, [](FileActions& a, const Device& d, const Names&) { a.Send(d); }},
    FileCommand{"save", "Sa&ve…", "Save the printer's files on this computer", "Ctrl+S", OnFiles,
                Takes::Some, [](FileActions& a, const Device& d, const Names& n) { a.Save(d, n); }},
    FileCommand{"run", "&Run", "Make the file the working program and start it", "Ctrl+R", OnFiles,
                Takes::One,
                [](FileActions& a, const Device& d, const Names& n) { a.Start(d, n.front()); }},
    FileCommand{"print", "&Print", "Print the image, or a line of text in the font", "Ctrl+P",
                OnFonts | OnImages, Takes::One,
                [](FileActions& a, const Device& d, const Names& n) { a.Print(d, n.front()); }},
    FileCommand{"copy", "&Copy…", "Copy the files on the printer", "Ctrl+D", OnFiles, Takes::Some,
                [](FileActions& a, const Device& d, const Names& n) { a.Copy(d, n); }},
    FileCommand{"rename", "Re&name…", "Rename the file, also to another device", "F2", OnFiles,
                Takes::One,
                [](FileActions& a, const Device& d, const Names& n) { a.Rename(d, n.front()); }},
    FileCommand{"delete", "&Delete…", "Delete from the printer", "Del", OnFiles | OnImages,
                Takes::Some,
                [](FileActions& a, const Device& d, const Names& n) { a.Delete(d, n); }},
};

} // namespace

bool FileCommand::IsFor(DeviceKind kind) const {
    return (kinds & BitOf(kind)) != 0;
}

bool FileCommand::Fits(std::size_t lCount) const {
    switch (takes) {
    case Takes::None:
        return true;
    case Takes::One:
        return lCount == 1;
    default:
        return lCount > 0;
    }
}

std::span<const FileCommand> FileCommands() {
    return Commands;
}

} // namespace qnterm
