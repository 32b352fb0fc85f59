import QtQuick 2.13
import QtTest 1.13

// A test case that fails on any warning that it didn't announce.
TestCase {
    id: testCase

    property var expectedWarnings: []
    // A new language evaluates the bindings of the test case itself, which warns of itself.
    readonly property var runnersOwn: /StrictCase: Binding loop detected/

    when: windowShown

    function init() {
        expectedWarnings = []
        messages.start()
    }

    function cleanup() {
        var unexpected = messages.warnings().filter(function(text) {
            return !runnersOwn.test(text) && !expectedWarnings.some(function(pattern) { return pattern.test(text) })
        })
        compare(unexpected, [])
    }

    // Makes the warnings that match `pattern` part of what is tested: there must be one.
    function expectWarning(pattern) {
        expectedWarnings.push(pattern)
        verify(messages.warnings().some(function(text) { return pattern.test(text) }), "no warning " + pattern)
    }

    function make(component, properties) {
        var item = createTemporaryObject(component, testCase.parent, properties || {})
        verify(item)
        return item
    }

    function find(item, name) {
        var child = findChild(item, name)
        verify(child, "no item " + name)
        return child
    }
}
