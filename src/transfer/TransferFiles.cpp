#include "transfer/TransferFiles.h"

#include <utility>

namespace qncomm::transfer {

namespace {

transfer::Answer FailedAnswer(std::string reason) {
    transfer::Answer answer;
    answer.kind = AnswerKind::Failed;
    answer.reason = std::move(reason);
    return answer;
}

transfer::Answer AskSource(FileSource& source, const Request& request, std::string& buffer) {
    transfer::Answer answer;
    switch (request.kind) {
    case RequestKind::NextFile:
        if (auto file = source.Next()) {
            answer.file = std::move(*file);
        } else {
            answer.kind = AnswerKind::Skip;
        }
        return answer;
    case RequestKind::Read: {
        std::string reason;
        buffer.clear();
        if (!source.Read(request.offset, request.length, buffer, reason))
            return FailedAnswer(reason);
        answer.data = buffer;
        return answer;
    }
    case RequestKind::Close:
        source.Close(request.whole);
        return answer;
    default:
        return FailedAnswer("no place for received files");
    }
}

transfer::Answer AskSink(FileSink& sink, const Request& request) {
    transfer::Answer answer;
    bool done = true;
    switch (request.kind) {
    case RequestKind::Offer: {
        auto decision = sink.Offer(request.file);
        answer.kind = decision.kind;
        answer.offset = decision.offset;
        answer.sum = decision.sum;
        answer.reason = std::move(decision.reason);
        return answer;
    }
    case RequestKind::Write:
        done = sink.Write(request.offset, request.data, answer.reason);
        break;
    case RequestKind::Close:
        done = sink.Close(request.whole, answer.reason);
        break;
    default:
        return FailedAnswer("no files to send");
    }
    if (!done) answer.kind = AnswerKind::Failed;
    return answer;
}

} // namespace

void ServeRequests(TransferEngine& engine, FileSource* source, FileSink* sink, Time now) {
    std::string buffer;
    while (const Request* request = engine.PendingRequest()) {
        if (source != nullptr) {
            engine.Answer(AskSource(*source, *request, buffer), now);
        } else if (sink != nullptr) {
            engine.Answer(AskSink(*sink, *request), now);
        } else {
            engine.Answer(FailedAnswer("no files"), now);
        }
    }
}

std::string_view ServedOutput(TransferEngine& engine, FileSource* source, FileSink* sink,
                              Time now) {
    ServeRequests(engine, source, sink, now);
    std::string_view output = engine.Output(now);
    while (output.empty() && engine.PendingRequest() != nullptr) {
        ServeRequests(engine, source, sink, now);
        output = engine.Output(now);
    }
    return output;
}

} // namespace qncomm::transfer
