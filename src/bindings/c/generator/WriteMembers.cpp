// Writes what the interfaces in other languages say of the members to the standard output.
//
//   write_members header SOURCES     qncomm/members.h; SOURCES is the folder of the project's
//   sources write_members source SOURCES     what implements it

#include "PythonMembers.h"
#include "TypedFunctions.h"

#include "platform/SystemFiles.h"

#include <iostream>
#include <string>

using namespace qncomm::bindings;

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string sources = argv[2];
    const CommentsOfClass comments = [&](const CallableClass& of) {
        const auto header = qncomm::SystemFiles().Open(sources + "/" + of.header);
        return CommentsOf(header->Read(header->Length()));
    };
    if (argv[1] == std::string("header")) std::cout << MembersHeader(comments);
    if (argv[1] == std::string("python")) std::cout << MembersModule(comments);
    if (argv[1] == std::string("source")) std::cout << MembersSource();
}
