"""The check for unsafe awaiting forms finds each of them, and leaves the safe ones alone."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../Tools/checks"))
import awaiting_forms  # noqa: E402

SAFE = {
    "a statement of its own": "co_await f(a, b);",
    "a declaration": "auto const meets = co_await repository.fetchAllMeets();",
    "a structured binding": "auto [order, first, second] = co_await group.async_wait(wait_for_one(), use_awaitable);",
    "an assignment": "failure = co_await save(std::move(meet));",
    "the bare result": "co_return co_await f(a);",
    "a template call": "auto const x = co_await get<std::vector<int>, 3>(a);",
    "a dereferenced target": "auto const x = co_await *operation;",
    "arithmetic in an argument": "auto const x = co_await f(a - b, c < d);",
    "the body of a condition": "if (ready) co_await f();",
    "a loop's body": "for (auto const& source : sources) { auto const part = co_await source->fetch(); all.insert(part); }",
    "a lambda without captures": "co_await run([](int a) { return a; });",
    "a coroutine lambda named first": "auto task = [this]() -> Task<void> { co_await f(); };",
    "a subscript": "auto const x = co_await tasks[index];",
    "a result tested afterwards": "bool const granted = co_await ask(); if (!granted) co_return;",
    "a comment": "// if (co_await f()) is not safe\nco_await f();",
    "a text": 'log("if (co_await f())"); co_await f();',
    "a digit separator": "int const n = 1'000; char const c = '\\''; co_await f(n);",
    "a try block": "try { auto const x = co_await f(); } catch (E const& e) { failure = e; }",
    "a conditional before it": "auto const a = b ? c : d; co_await f(a);",
    "a record built before it": "Record const record{.a = 1}; co_await f(record);",
    "a case label": "switch (kind) { case 1: co_await f(); break; default: co_await g(); }",
}

UNSAFE = {
    "an if's condition": ("if (co_await f()) g();", "condition of 'if'"),
    "a negated condition": ("if (!co_await f()) co_return;", "condition of 'if'"),
    "an initialiser in a condition": ("if (auto x = co_await f(); x) g();", "condition of 'if'"),
    "a while's condition": ("while (co_await f()) g();", "condition of 'while'"),
    "a switch's condition": ("switch (co_await f()) { default: break; }", "condition of 'switch'"),
    "a range": ("for (auto x : co_await f()) g(x);", "condition of 'for'"),
    "an else-if": ("if (a) { b(); } else if (co_await f()) g();", "condition of 'if'"),
    "a conditional": ("auto x = a ? co_await f() : co_await g();", "'?:'"),
    "a conditional argument": ("auto x = co_await f(a ? b : c);", "'?:'"),
    "two in one statement": ("auto x = co_await f() + co_await g();", "a second co_await"),
    "an argument": ("g(co_await f());", "inside brackets"),
    "an awaited argument": ("auto x = co_await g(co_await f());", "a second co_await"),
    "an initialiser": ("auto x = Record{co_await f()};", "inside brackets"),
    "a braced declaration": ("std::vector<int> x{co_await f()};", "inside brackets"),
    "a returned expression": ("co_return co_await f() == 3;", "operator on the awaited result"),
    "a returned member": ("co_return (co_await f()).size();", "inside brackets"),
    "a returned negation": ("co_return !co_await f();", "after '!'"),
    "a logical operator": ("bool x = co_await f() && g();", "operator on the awaited result"),
    "a left operand": ("auto x = 1 + co_await f();", "after '+'"),
    "a capturing lambda": ("co_await f([this] { g(); });", "capturing lambda"),
    "a lambda that captures all": ("auto x = co_await f(a, [&](int b) { return b; });", "capturing lambda"),
    "an aggregate": ("co_await f(Record{.a = 1, .b = text});", "built in braces"),
    "an unnamed aggregate": ("co_await f({1, 2});", "built in braces"),
    "inside a coroutine lambda": ("auto t = [this]() -> Task<void> { if (co_await f()) g(); };", "condition of 'if'"),
    "inside a lambda that is an argument": ("start([]() -> Task<int> { co_return 1 + co_await f(); });", "after '+'"),
    "inside a lambda without parameters": ("start([] { g(co_await f()); });", "inside brackets"),
    "inside a class": ("class A { Task<void> b() { g(co_await f()); } };", "inside brackets"),
    "after a member initialiser": ("A::A() : a{1} { g(co_await f()); }", "inside brackets"),
    "thrown": ("throw co_await f();", "after 'throw'"),
}


class AwaitingForms(unittest.TestCase):
    def test_safe_forms_are_left_alone(self):
        for name, body in SAFE.items():
            with self.subTest(name):
                self.assertEqual([], awaiting_forms.findings(f"namespace N {{ Task<void> A::b(int c) {{ {body} }} }}"))

    def test_unsafe_forms_are_found(self):
        for name, (body, why) in UNSAFE.items():
            with self.subTest(name):
                found = awaiting_forms.findings(f"namespace N {{ Task<void> A::b(int c) {{ {body} }} }}")
                self.assertTrue(any(why in finding.why for finding in found), f"{found}")

    def test_the_line_is_named(self):
        source = '#include "a.h"\n\n/* two\n lines */\nTask<void> f() {\n    if (co_await g())\n        h();\n}\n'
        self.assertEqual([6], [finding.line for finding in awaiting_forms.findings(source)])

    def test_raw_texts_are_skipped(self):
        self.assertEqual([], awaiting_forms.findings('Task<void> f() { g(R"x(if (co_await h()) ")x"); co_await k(); }'))


if __name__ == "__main__":
    unittest.main()
