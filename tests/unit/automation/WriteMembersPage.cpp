// Writes the reference of the members to the standard output.

#include "MembersPage.h"

#include <iostream>

int main() {
    std::cout << qncomm::MembersPage();
}
