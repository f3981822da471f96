// The engine counts calls of script functions, and ends what goes too deep with an error. What it does in its
// own code is not counted: it runs off the end of the stack, which would end the terminal. Here such things take
// the way through a script function, or are limited, or taken away. Evaluated once in each engine, first of all.

(function(global) {
    "use strict";

    const apply = Reflect.apply, construct = Reflect.construct;
    const define = Object.defineProperty, describe = Object.getOwnPropertyDescriptor;
    const prototypeOf = Object.getPrototypeOf;
    const isList = Array.isArray, toObject = Object;
    const toText = String;
    const Syntax = SyntaxError, Range = RangeError, Type = TypeError;
    const nothing = [];

    function put(object, key, value) {
        define(value, "name", { configurable: true, value: typeof key === "symbol" ? "" : key });
        define(object, key, { configurable: true, enumerable: false, writable: true, value: value });
    }

    // A chain of them has no end that anything watches.
    delete global.Proxy;

    // Their upkeep goes astray in memory once enough of the keys have gone.
    delete global.WeakMap;
    delete global.WeakSet;

    // Lists: inside itself one is an empty text.
    const underWay = [];
    let depth = 0;
    function guardList(name) {
        const own = Array.prototype[name];
        put(Array.prototype, name, function() {
            for (let i = 0; i < depth; ++i) {
                if (underWay[i] === this)
                    return "";
            }
            define(underWay, depth, { configurable: true, writable: true, value: this });
            ++depth;
            try {
                return apply(own, this, arguments);
            } finally {
                underWay[--depth] = null;
            }
        });
    }
    guardList("join");
    guardList("toLocaleString");

    // Errors whose message is an error, what turns itself into a text by itself, and generators that run
    // generators.
    function guardDepth(prototype, name) {
        const own = prototype[name];
        put(prototype, name, function(value) { return apply(own, this, arguments); });
    }
    guardDepth(Error.prototype, "toString");
    guardDepth(Array.prototype, "toString");
    guardDepth(RegExp.prototype, "toString");
    guardDepth(Date.prototype, "toJSON");
    guardDepth(Promise.prototype, "catch");
    const generators = prototypeOf(prototypeOf((function*() {})()));
    guardDepth(generators, "next");
    guardDepth(generators, "return");
    guardDepth(generators, "throw");

    // f(...list) puts the elements on the stack unwatched; a script function has a look at it with each.
    function guardIterator(prototype) {
        const own = prototype.next;
        put(prototype, "next", function() { return apply(own, this, nothing); });
    }
    guardIterator(prototypeOf([][Symbol.iterator]()));
    guardIterator(prototypeOf(""[Symbol.iterator]()));
    guardIterator(prototypeOf(new Map().keys()));
    guardIterator(prototypeOf(new Set().keys()));

    // What ends the terminal when it is called on itself, on something that constructs nothing, or on the
    // arguments of a function.
    put(Function.prototype, "call", function(self, ...values) { return apply(this, self, values); });
    put(Function.prototype, "apply", function(self, values) {
        return apply(this, self, values === undefined || values === null ? nothing : values);
    });
    function guardQuestion(name, answer) {
        const own = Object.prototype[name];
        put(Object.prototype, name, function(key) {
            if (this === undefined || this === null)
                return apply(own, this, arguments);
            return answer(describe(toObject(this), key));
        });
    }
    guardQuestion("hasOwnProperty", function(property) { return property !== undefined; });
    guardQuestion("propertyIsEnumerable",
        function(property) { return property !== undefined && property.enumerable; });
    function guardPromise(name) {
        const own = Promise[name];
        put(Promise, name, function(value) {
            if (typeof this !== "function")
                throw new Type("Promise." + name + " was called on something that is no constructor");
            return apply(own, this, arguments);
        });
    }
    guardPromise("resolve");
    guardPromise("reject");
    guardPromise("all");
    guardPromise("race");

    // Texts of gigabytes.
    const longestText = 134217728;
    const ownRepeat = String.prototype.repeat;
    put(String.prototype, "repeat", function(count) {
        if (this === undefined || this === null)
            return apply(ownRepeat, this, arguments);
        const text = toText(this), times = +count;
        if (text.length * times > longestText)
            throw new Range("The text would be too long");
        return apply(ownRepeat, text, [times]);
    });
    function guardPadding(name) {
        const own = String.prototype[name];
        put(String.prototype, name, function(length, filler) {
            const wanted = +length;
            if (wanted > longestText)
                throw new Range("The text would be too long");
            return apply(own, this, filler === undefined ? [wanted] : [wanted, filler]);
        });
    }
    guardPadding("padStart");
    guardPadding("padEnd");

    // Regular expressions from texts: deep nesting takes stack, and where a group is repeated the matcher
    // remembers what is in it in a place of fixed size.
    const OwnRegExp = RegExp, expressions = RegExp.prototype;
    const sourceOf = describe(expressions, "source").get;
    const matchAs = expressions[Symbol.match], searchAs = expressions[Symbol.search];
    const matching = Symbol.match, searching = Symbol.search, splitting = Symbol.split;
    const longestPattern = 20000, longestRepeating = 250;
    function repeatsGroup(text) {
        for (let i = 1; i < text.length; ++i) {
            const sign = text[i];
            if (text[i - 1] === ")" && (sign === "*" || sign === "+" || sign === "?" || sign === "{"))
                return true;
        }
        return false;
    }
    function patternOf(value) {
        const text = toText(value);
        if (text.length > longestPattern || text.length > longestRepeating && repeatsGroup(text))
            throw new Syntax("The regular expression is too long");
        return text;
    }
    function isExpression(value) {
        if (value === null || typeof value !== "object")
            return false;
        try {
            apply(sourceOf, value, nothing);
            return true;
        } catch (no) {
            return false;
        }
    }
    function Expression(pattern, flags) {
        const made = isExpression(pattern);
        if (new.target === undefined && made && flags === undefined)
            return pattern;
        const given = made ? pattern : pattern === undefined ? "" : patternOf(pattern);
        return construct(OwnRegExp, flags === undefined ? [given] : [given, flags], new.target || Expression);
    }
    for (const key of Reflect.ownKeys(OwnRegExp)) {
        if (key !== "prototype" && key !== "length" && key !== "name")
            define(Expression, key, describe(OwnRegExp, key));
    }
    define(Expression, "prototype", { writable: false, value: expressions });
    put(expressions, "constructor", Expression);
    put(global, "RegExp", Expression);
    define(Expression, "name", { configurable: true, value: "RegExp" });
    delete expressions.compile;
    function guardMatching(name, key, asExpression) {
        const own = String.prototype[name];
        put(String.prototype, name, function(pattern) {
            if (this === undefined || this === null)
                return apply(own, this, arguments);
            if (pattern !== undefined && pattern !== null) {
                const way = pattern[key];
                if (way !== undefined && way !== null)
                    return apply(way, pattern, [this]);
            }
            return apply(asExpression, new Expression(pattern), [toText(this)]);
        });
    }
    guardMatching("match", matching, matchAs);
    guardMatching("search", searching, searchAs);
    const ownSplit = expressions[splitting];
    put(expressions, splitting, function(text, limit) {
        if (!isExpression(this))
            throw new Type("This is no regular expression");
        return apply(ownSplit, this, arguments);
    });

    // The console: lists are written out, as far as a line of the log goes.
    const longestLine = 4096;
    function plain(value) {
        try {
            return toText(value);
        } catch (failure) {
            try {
                return toText(failure);
            } catch (ignored) {
                return "";
            }
        }
    }
    function written(value, within) {
        if (!isList(value))
            return plain(value);
        let inside = 1;
        for (let outer = within; outer !== null; outer = outer.within) {
            if (outer.list === value)
                return "[Circular]";
            ++inside;
        }
        if (inside > 20)
            return "[…]";
        let text = "[";
        for (let i = 0; i < value.length && text.length < longestLine; ++i)
            text += (i > 0 ? "," : "") + written(value[i], { list: value, within: within });
        return text + "]";
    }
    function line(values, first) {
        let text = "";
        for (let i = first; i < values.length && text.length < longestLine; ++i)
            text += (i > first ? " " : "") + written(values[i], null);
        if (text.length <= longestLine)
            return text;
        let start = "";
        for (let i = 0; i < longestLine; ++i)
            start += text[i];
        return start + "…";
    }
    function guardConsole(object, name, first) {
        const own = object[name];
        put(object, name, function() {
            const values = [];
            for (let i = 0; i < first && i < arguments.length; ++i)
                define(values, i, { value: arguments[i], writable: true, enumerable: true, configurable: true });
            if (arguments.length > first)
                define(values, first, { value: line(arguments, first) });
            return apply(own, this, values);
        });
    }
    for (const name of ["debug", "log", "info", "warn", "error", "exception"])
        guardConsole(global.console, name, 0);
    guardConsole(global.console, "assert", 1);
    guardConsole(global, "print", 0);
})(this);
