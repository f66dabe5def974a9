#pragma once

#include <string>
#include <string_view>

namespace qncomm::bench {

/// The size of every terminal that is compared.
constexpr int Rows = 300;
constexpr int Columns = 300;

/// Asks a terminal where its cursor is, and an answer to that.
constexpr std::string_view Question = "\x1B[6n";
constexpr std::string_view Answer = "\x1B[1;1R";

/// A line of words between the bench and the program that feeds a terminal, over a socket with a
/// name, since the terminals start that program and not the bench.
class FeedLine {
  public:
    /// The feeding end. Throws std::runtime_error when nobody listens.
    static FeedLine To(const std::string& sSocket);
    /// Takes the next one that connects. Throws std::runtime_error after some seconds.
    static FeedLine AcceptedBy(int iListener);
    FeedLine(FeedLine&& other) noexcept;
    FeedLine& operator=(FeedLine&&) = delete;
    ~FeedLine();

    void Say(std::string_view word);
    /// The next word. Throws std::runtime_error when the other end is gone or silent for a minute.
    std::string Hear();

  private:
    explicit FeedLine(int iDescriptor) : mDescriptor(iDescriptor) {}

    int mDescriptor;
};

/// Waits for feeding ends at a path that is free.
class FeedListener {
  public:
    explicit FeedListener(std::string sSocket);
    FeedListener(const FeedListener&) = delete;
    FeedListener& operator=(const FeedListener&) = delete;
    ~FeedListener();

    const std::string& Path() const { return mPath; }
    FeedLine Accept() const { return FeedLine::AcceptedBy(mDescriptor); }

  private:
    std::string mPath;
    int mDescriptor;
};

} // namespace qncomm::bench
