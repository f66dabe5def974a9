// What a host can call of the link.

#include "Classes.h"
#include "Rows.h"

namespace qncomm {
namespace {

void OutputText(clsDataLink& link, std::string& sText, bool bWaitForEcho) {
    link.OutputText(sText, bWaitForEcho);
}

} // namespace

const SurfaceClass& LinkClass() {
    using namespace rows;
    using Link = clsDataLink;
    static const SurfaceClass of{
        "clsDataLink",
        {Method<&Link::IsValidPort>(1, "IsValidPort", Needs::Nothing, In("iPortNumber")),
         Method<&Link::SaveCommSettings>(2, "SaveCommSettings", Needs::Nothing),
         Method<&Link::ShowSettingsDlg>(3, "ShowSettingsDlg", Needs::Nothing),
         Get<&Link::RegSettings>(4, "RegSettings", Needs::Nothing),
         Set<&Link::SetRegSettings>(4, "RegSettings", In("settings")),
         Method<&Link::TearDown>(5, "TearDown", Needs::FreePort),
         Method<&OutputText>(6, "OutputText", Needs::OpenPort, In("sText"), Flag("bWaitForEcho")),
         Method<&Link::InputText>(7, "InputText", Needs::OpenPort, In("sInputLines"),
                                  Flag("bNoQNErrorCheck"), In("lTimeout").Or("1000")),
         Method<&Link::WaitForEchoLine>(8, "WaitForEchoLine", Needs::OpenPort, In("sEcho"),
                                        In("lTimeout").Or("500")),
         Method<&Link::WaitForOk>(9, "WaitForOk", Needs::OpenPort, In("lTimeout").Or("500")),
         Get<&Link::ImmediateMode>(10, "ImmediateMode", Needs::Nothing),
         Set<&Link::SetImmediateMode>(10, "ImmediateMode", In("bValue")),
         Get<&Link::Stdio>(11, "Stdio", Needs::Nothing),
         Method<&Link::KermitUpload>(12, "KermitUpload", Needs::FreePort, Path("sSource"),
                                     In("sDestination"), Flag("bManual")),
         Method<&Link::KermitDownload>(13, "KermitDownload", Needs::Printer, In("sSource"),
                                       Path("sDestination"), In("lFileSize").Or("0")),
         Method<&Link::BinaryUpload>(14, "BinaryUpload", Needs::OpenPort, Path("sSource"),
                                     In("iProtocol").Or("5")),
         Method<&Link::BinaryDownload>(15, "BinaryDownload", Needs::OpenPort, Path("sDestination"),
                                       In("iProtocol").Or("5")),
         Method<&Link::SendBreak>(16, "SendBreak", Needs::OpenPort, In("lMilliseconds").Or("300")),
         Method<&Link::SendCtrlC>(17, "SendCtrlC", Needs::OpenPort),
         Method<&Link::StopProgram>(18, "StopProgram", Needs::FreePort)},
        {EventRow<&Link::PortStateEvent>(1, "PortStateEvent", MemberType::HostText, "bPortOpen"),
         EventRow<&Link::StatusEvent>(2, "StatusEvent", MemberType::HostText, "sStatusMsg",
                                      "iProgressPerc", "bCancel"),
         EventRow<&Link::LiveStateEvent>(3, "LiveStateEvent", MemberType::HostText, "iLine",
                                         "iPrinter", "lGeneration")}};
    return of;
}

} // namespace qncomm
