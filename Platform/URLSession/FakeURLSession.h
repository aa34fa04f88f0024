#pragma once

#include "Platform/URLSession/URLSession.h"

#include <deque>
#include <variant>

namespace Platform {

/// Answers requests from a prepared list and keeps what was asked. A request that nobody prepared an answer
/// for fails loudly.
class FakeURLSession final : public URLSession {
public:
    using Answer = std::variant<URLResponse, URLError::Case>;

    void prepare(Answer answer) { answers.push_back(std::move(answer)); }

    Foundation::Task<URLResponse> data(URLRequest request) override {
        requests.push_back(std::move(request));
        if (answers.empty()) throw std::logic_error("no answer was prepared for this request");
        auto const answer = std::move(answers.front());
        answers.pop_front();
        if (auto const* failure = std::get_if<URLError::Case>(&answer)) throw URLError(*failure);
        co_return std::get<URLResponse>(answer);
    }

    std::vector<URLRequest> requests;

private:
    std::deque<Answer> answers;
};

} // namespace Platform
