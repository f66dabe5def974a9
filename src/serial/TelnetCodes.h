#pragma once

namespace qncomm::telnet {

inline constexpr char Iac = '\xFF';  ///< announces a command; a data byte of this value is doubled
inline constexpr char Dont = '\xFE'; ///< "do not", "do", "will not", "will": about an option
inline constexpr char Do = '\xFD';
inline constexpr char Wont = '\xFC';
inline constexpr char Will = '\xFB';
inline constexpr char Begin = '\xFA'; ///< of a subnegotiation
inline constexpr char End = '\xF0';   ///< of a subnegotiation, after Iac

inline constexpr char Binary = 0; ///< options
inline constexpr char SuppressGoAhead = 3;
inline constexpr char ComPort = 44;

} // namespace qncomm::telnet
