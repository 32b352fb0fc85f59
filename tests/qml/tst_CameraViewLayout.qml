import QtQuick 2.13
import QtQuick.Window 2.13
import QtTest 1.13
import "qrc:/"

Item {
    id: root

    width: 1024
    height: 768

    Component {
        id: bareArea

        ViewArea {
            width: 400
            height: 300
        }
    }

    PanelFixture {
        id: fixture
    }

    PanelTestCase {
        name: "CameraViewLayout"
        fixture: fixture

        readonly property var buttons: ["imuButton", "stereoButton", "rgbButton", "rgb2Button", "tofButton", "irButton",
            "sgbmButton", "slamButton"]
        readonly property var order: ["imuView", "stereoView", "rgbView", "rgb2View", "tofView", "irView", "sgbmView",
            "slamView"]

        function test_thePageShowsTheModelsOfItsLayout() {
            open();
            ["unusedModel", "uniqueModel", "sideModel", "gridView", "uniqueView", "sideView"].forEach(function(name) {
                verify(page[name], name)
                compare(page[name], content[name], name)
            })
        }

        function turnOn(count) {
            switchOn.apply(null, buttons.slice(0, count))
            tryVerify(function() { return placed() === count })
        }

        function bigLayout() {
            content.mode = 1
            tryVerify(function() { return content.uniqueModel.count === 1 })
            wait(60)
        }

        // A view that has its place in a model gets it in the window a moment later.
        function inWindow(item) {
            tryVerify(function() { return item.Window.window !== null })
        }

        function press(name, button) {
            const item = viewNamed(name)
            inWindow(item)
            mouseClick(findChild(item, button))
        }

        function logged(text) {
            return messages.lines().filter(function(line) { return line.replace("qml: ", "") === text }).length
        }

        function minimized(model) {
            const result = []
            for (let i = 0; i < model.count; ++i)
                result.push(model.get(i).minimized)
            return result
        }

        function test_allViewsWaitUnused() {
            open()
            compare(names(content.unusedModel), ["imuView", "stereoView", "rgbView", "rgb2View", "rgbdView", "tofView",
                "irView", "sgbmView", "tof3DView", "eyetrackingView", "slamView"])
            compare(placed(), 0)
            compare(content.gridView.columns, 1)
            compare(content.gridView.interactive, false)
            for (let i = 0; i < content.unusedModel.count; ++i) {
                compare(content.unusedModel.get(i).width, 0)
                compare(content.unusedModel.get(i).modelIndex, -1)
            }
        }

        function test_theGridHasRoomForAll_data() {
            return [
                { count: 1, landscape: true, columns: 1, rows: 1 },
                { count: 2, landscape: true, columns: 2, rows: 1 },
                { count: 3, landscape: true, columns: 2, rows: 2 },
                { count: 4, landscape: true, columns: 2, rows: 2 },
                { count: 5, landscape: true, columns: 3, rows: 2 },
                { count: 7, landscape: true, columns: 3, rows: 3 },
                { count: 1, landscape: false, columns: 1, rows: 1 },
                { count: 2, landscape: false, columns: 1, rows: 2 },
                { count: 3, landscape: false, columns: 2, rows: 2 },
                { count: 4, landscape: false, columns: 2, rows: 2 },
                { count: 5, landscape: false, columns: 2, rows: 3 },
                { count: 7, landscape: false, columns: 2, rows: 4 }
            ].map(function(row) { row.tag = row.count + (row.landscape ? " landscape" : " portrait"); return row })
        }

        function test_theGridHasRoomForAll(row) {
            open()
            if (!row.landscape) {
                page.width = 700
                page.height = 760
            }
            turnOn(row.count)
            compare(page.landscape, row.landscape)
            compare(content.gridView.columns, row.columns)
            compare(content.gridView.rows, row.rows)
            compare(names(content.sideModel), order.slice(0, row.count))
            const last = content.sideModel.get(row.count - 1)
            fuzzyCompare(last.width, content.width / row.columns, 0.01)
            fuzzyCompare(last.height, content.height / row.rows, 0.01)
            const x = ((row.count - 1) % row.columns) * last.width
            const y = Math.floor((row.count - 1) / row.columns) * last.height
            tryVerify(function() {
                const place = last.mapToItem(content, 0, 0)
                return Math.abs(place.x - x) < 0.01 && Math.abs(place.y - y) < 0.01
            })
            verify(minimized(content.sideModel).every(function(small) { return !small }))
        }

        function test_severalSwitchesMakeOneRebuild() {
            open()
            let inserts = 0
            content.sideModel.countChanged.connect(function() { ++inserts })
            switchOn("imuButton", "stereoButton", "rgbButton")
            tryVerify(function() { return placed() === 3 })
            wait(60)
            compare(inserts, 3)
        }

        function test_aViewThatLeavesHasNoRoom() {
            open()
            turnOn(2)
            const stereo = viewNamed("stereoView")
            verify(stereo.width > 0)
            control("stereoButton").checked = false
            tryCompare(content.sideModel, "count", 1)
            compare(stereo.width, 0)
            compare(stereo.height, 0)
            compare(stereo.camera, null)
            compare(content.sideModel.get(0).width, content.width)
            compare(device.callsTo("stereo.setViewSize").slice(-1), ["stereo.setViewSize(0,0)"])
        }

        function toldTheSizeOf(cell, models) {
            models.forEach(function(model) {
                compare(device.callsTo(model + ".setViewSize").slice(-1),
                        [model + ".setViewSize(" + cell.width + "," + cell.height + ")"])
            })
        }

        function resizedOneWayAtATime(cell, models) {
            const width = cell.width, height = cell.height
            page.width -= 100
            tryVerify(function() { return cell.width !== width })
            compare(cell.height, height)
            toldTheSizeOf(cell, models)
            page.height -= 60
            tryVerify(function() { return cell.height !== height })
            toldTheSizeOf(cell, models)
        }

        function test_sizesOfAbsentModelsAreNotSent() {
            openWithout(["stereo", "rgb", "tof", "sgbm", "rgbd"])
            switchOn("stereoButton", "rgbButton", "rgb2Button", "rgbdButton", "tofButton", "irButton", "sgbmButton")
            tryVerify(function() { return placed() === 7 })
            // The infrared view asks for the depth model, too.
            compare(device.callsTo().filter(function(call) { return /set(View|View2)Size/.test(call) }), [])
        }

        function test_rgbdIsToldItsSize() {
            open(function(fake) { fake.rgbd.enable = true })
            switchOn("rgbdButton")
            tryVerify(function() { return placed() === 1 })
            compare(device.callsTo("rgbd.setViewSize").slice(-1),
                    ["rgbd.setViewSize(" + content.width + "," + content.height + ")"])
            resizedOneWayAtATime(viewNamed("rgbdView"), ["rgbd"])
        }

        function test_sizesGoToTheModels() {
            open()
            // The second colour picture is told the room of the first view.
            const rgbView = viewNamed("rgbView")
            const strangers = []
            device.probe = function(call) {
                if (call.indexOf("rgb.setView2Size") === 0
                        && call !== "rgb.setView2Size(" + rgbView.width + "," + rgbView.height + ")")
                    strangers.push(call)
            }
            turnOn(8)
            const cell = content.sideModel.get(0)
            toldTheSizeOf(cell, ["stereo", "rgb", "tof", "tofIr", "sgbm"])
            resizedOneWayAtATime(cell, ["stereo", "rgb", "tof", "tofIr", "sgbm"])
            verify(device.callsTo("rgb.setView2Size").length > 0)
            compare(strangers, [])
        }

        function test_slamTakesTheBigPlace() {
            open()
            turnOn(8)
            bigLayout()
            compare(names(content.uniqueModel), ["slamView"])
            compare(names(content.sideModel), order.slice(0, 7))
            compare(viewNamed("slamView").minimized, false)
            verify(minimized(content.sideModel).every(function(small) { return small }))
            for (let i = 0; i < 7; ++i)
                compare(content.sideModel.get(i).modelIndex, i)
            compare(viewNamed("slamView").width, content.uniqueView.width)
            compare(viewNamed("imuView").width, content.sideView.width)
            fuzzyCompare(viewNamed("imuView").height, content.sideView.width * 0.75, 0.01)
            verify(content.sideView.width >= 150)
            verify(content.sideView.mapToItem(content, content.sideView.width, 0).x <= content.width + 0.01)
        }

        function test_onlyTheStripOfTheBigLayoutHasAModel() {
            open()
            compare([content.sideView.model, content.sideView.enabled], [null, false])
            compare(content.gridView.model, content.sideModel)
            content.mode = 1
            compare([content.sideView.model, content.sideView.enabled], [content.sideModel, true])
            compare(content.gridView.model, null)
        }

        function test_theFirstStreamsOfTheBigLayout() {
            open()
            content.mode = 1
            switchOn("imuButton", "slamButton")
            tryVerify(function() { return placed() === 2 })
            compare(names(content.uniqueModel), ["slamView"])
            compare(names(content.sideModel), ["imuView"])
            compare([viewNamed("slamView").minimized, viewNamed("imuView").minimized], [false, true])
        }

        function test_theFirstViewTakesTheBigPlaceWithoutSlam() {
            open()
            turnOn(3)
            bigLayout()
            compare(names(content.uniqueModel), ["imuView"])
            compare(names(content.sideModel), ["stereoView", "rgbView"])
            compare(viewNamed("imuView").minimized, false)
        }

        function test_slamOffGivesTheBigPlaceToTheFirst() {
            open()
            switchOn("stereoButton", "rgbButton", "slamButton")
            tryVerify(function() { return placed() === 3 })
            bigLayout()
            compare(names(content.uniqueModel), ["slamView"])
            control("slamButton").checked = false
            tryVerify(function() { return content.uniqueModel.count === 1 && names(content.uniqueModel)[0] === "stereoView" })
            compare(names(content.sideModel), ["rgbView"])
        }

        function test_maximizeAndBack() {
            open()
            turnOn(4)
            press("rgbView", "maxBtn")
            compare(content.mode, 1)
            tryVerify(function() { return names(content.uniqueModel)[0] === "rgbView" })
            compare(names(content.sideModel), ["stereoView", "imuView", "rgb2View"])
            compare(viewNamed("rgbView").modelIndex, -1)
            compare(viewNamed("imuView").modelIndex, 1)
            compare(viewNamed("imuView").minimized, true)
            compare(viewNamed("rgbView").width, content.uniqueView.width)
            compare(content.uniqueView.cellWidth, content.uniqueView.width)
            compare(content.uniqueView.cellHeight, content.uniqueView.height)

            waitForRendering(content, 200)
            press("rgbView", "maxBtn")
            compare(content.mode, 0)
            tryCompare(content.sideModel, "count", 4)
            compare(content.uniqueModel.count, 0)
            // What had the big place comes first.
            compare(names(content.sideModel), ["rgbView", "stereoView", "imuView", "rgb2View"])
            names(content.sideModel).forEach(function(name) {
                const item = viewNamed(name)
                fuzzyCompare(item.width, content.width / 2, 0.01)
                fuzzyCompare(item.height, content.height / 2, 0.01)
                compare(item.minimized, false)
                tryCompare(item, "visible", true)
                tryCompare(item, "parent", content.gridView.contentItem)
            })
        }

        function test_maximizingBesideSlamSwapsTheTwo() {
            open()
            switchOn("stereoButton", "rgbButton", "slamButton")
            tryVerify(function() { return placed() === 3 })
            bigLayout()
            const cells = []
            content.uniqueModel.countChanged.connect(function() {
                cells.push([content.uniqueView.cellWidth, content.uniqueView.cellHeight])
            })
            press("rgbView", "maxBtn")
            compare(content.mode, 1)
            tryVerify(function() { return names(content.uniqueModel)[0] === "rgbView" })
            // No two cells of full size, not even while both views are there.
            compare(cells, [[1, 1], [1, 1]])
            compare(names(content.sideModel), ["stereoView", "slamView"])
            compare([viewNamed("rgbView").minimized, viewNamed("slamView").minimized], [false, true])
            compare([viewNamed("rgbView").modelIndex, viewNamed("slamView").modelIndex], [-1, 1])

            // The next rebuild gives the place back.
            control("stereoButton").checked = false
            tryVerify(function() { return names(content.uniqueModel)[0] === "slamView" && placed() === 2 })
            compare(names(content.sideModel), ["rgbView"])
        }

        function test_aMaximizedImuOrInfraredViewIsLogged() {
            open()
            switchOn("imuButton", "stereoButton", "tofButton", "irButton")
            tryVerify(function() { return placed() === 4 })
            viewNamed("stereoView").maximize()
            compare([logged("imuview maximize"), logged("ir view maximize")], [0, 0])
            viewNamed("imuView").maximize()
            compare([logged("imuview maximize"), logged("ir view maximize")], [1, 0])
            viewNamed("irView").maximize()
            compare([logged("imuview maximize"), logged("ir view maximize")], [1, 1])
        }

        function test_theStripKeepsItsShareAndItsLeastWidth_data() {
            return [{ tag: "narrowest", width: 640 }, { tag: "narrow", width: 1024 }, { tag: "wide", width: 1840 }]
        }

        function test_theStripKeepsItsShareAndItsLeastWidth(row) {
            open()
            page.width = row.width
            page.height = 600
            turnOn(2)
            bigLayout()
            compare(content.uniqueView.interactive, false)
            if (row.tag === "wide")
                fuzzyCompare(content.uniqueView.width, 0.8 * content.width, 1)
            else
                compare(content.sideView.width, 150)
            verify(content.uniqueView.width >= 0.5 * content.width)
            fuzzyCompare(content.sideView.cellHeight, content.sideView.cellWidth * 480 / 640, 0.01)
            compare(content.sideView.interactive, false)
            turnOn(8)
            tryCompare(content.sideView, "interactive", true)
        }

        function test_everyMaximizedViewIsShown_data() {
            return order.map(function(name) { return { tag: name } })
        }

        function test_everyMaximizedViewIsShown(row) {
            open()
            turnOn(8)
            const wanted = viewNamed(row.tag)
            wanted.maximize()
            tryVerify(function() { return names(content.uniqueModel)[0] === row.tag })
            waitForRendering(content, 200)
            for (let i = 0; i < content.sideModel.count; ++i) {
                const item = content.sideModel.get(i)
                compare(item.parent, content.sideView.contentItem, item.objectName)
                verify(item.visible, item.objectName)
            }
            compare(wanted.parent, content.uniqueView.contentItem)
            compare(wanted.mapToItem(content, 0, 0).x, 0)
        }

        function test_aSmallViewComesUpByDoubleClick() {
            open()
            switchOn("stereoButton", "rgbButton", "slamButton")
            tryVerify(function() { return placed() === 3 })
            bigLayout()
            const rgbView = viewNamed("rgbView")
            control("menuAutoCloseCheckbox").checked = false
            mouseDoubleClickSequence(rgbView, rgbView.width / 2, rgbView.height - 8)
            tryVerify(function() { return names(content.uniqueModel)[0] === "rgbView" })
            compare(names(content.sideModel), ["stereoView", "slamView"])
            compare(viewNamed("slamView").minimized, true)

            // The next rebuild gives the place back.
            control("imuButton").checked = true
            tryVerify(function() { return names(content.uniqueModel)[0] === "slamView" })
            compare(names(content.sideModel), ["imuView", "rgbView", "stereoView"])
        }

        function test_aDoubleClickOnABigViewKeepsTheLayout() {
            open()
            turnOn(2)
            const stereo = viewNamed("stereoView")
            stereo.doubleClicked()
            wait(80)
            compare(content.mode, 0)
            compare(names(content.sideModel), ["imuView", "stereoView"])
        }

        function test_theLayoutIsKept() {
            open()
            content.mode = 1
            tryVerify(function() { return fixture.storedMode() == 1 })
            content = null
            fixture.close()
            open()
            compare(content.mode, 1)
        }

        function test_aLayoutThatIsNoneIsTheGrid_data() {
            return [{ tag: "none", stored: -1 }, { tag: "unknown", stored: 7 }]
        }

        function test_aLayoutThatIsNoneIsTheGrid(row) {
            fixture.storeMode(row.stored)
            open()
            compare(content.mode, 0)
            turnOn(1)
            compare(content.gridView.visible, true)
        }

        function test_anAreaOfItsOwnHasNoLayout() {
            const area = createTemporaryObject(bareArea, root)
            compare(area.mode, -1)
            compare([area.gridView.visible, area.sideView.visible], [false, false])
            compare(area.sideView.enabled, false)
            compare([area.landscape, area.unusedModel.count], [true, 0])
        }

        function test_closingAViewStopsItsModel_data() {
            return [
                { tag: "imuView", button: "imuButton", calls: ["imu.control(false)"] },
                { tag: "stereoView", button: "stereoButton", calls: ["stereo.control(false)"] },
                { tag: "rgbView", button: "rgbButton", calls: ["rgb.control(false)"] },
                { tag: "rgb2View", button: "rgb2Button", calls: ["rgb.control(false,1)"] },
                { tag: "rgbdView", button: "rgbdButton", calls: ["rgbd.control(false)"] },
                { tag: "tofView", button: "tofButton", calls: ["tof.control(false)"] },
                { tag: "irView", button: "irButton", calls: [] },
                { tag: "sgbmView", button: "sgbmButton", calls: ["sgbm.control(false)"] },
                { tag: "tof3DView", button: "tof3DButton", calls: ["tof3d.control(false)"] },
                { tag: "slamView", button: "slamButton", calls: ["slam.control(false)"] },
                // The host's stream, whichever source is live.
                { tag: "slamView on the edge", view: "slamView", button: "slamButton", onEdge: true,
                    calls: ["slam.control(false)"] }
            ]
        }

        function test_closingAViewStopsItsModel(row) {
            open(function(fake) { fake.rgbd.enable = true })
            control(row.button).checked = true
            tryVerify(function() { return placed() === 1 })
            device.edge.enabled = row.onEdge === true
            press(row.view || row.tag, "closeBtn")
            compare(control(row.button).checked, false)
            compare(device.callsTo().filter(function(call) { return call.indexOf("control(") >= 0 }), row.calls)
            tryVerify(function() { return placed() === 0 })
        }

        function test_closingTheEyetrackingViewStopsItsModel() {
            open()
            const calls = []
            device.eyetracking = { left: null, right: null, control: function(on) { calls.push(on) } }
            const item = viewNamed("eyetrackingView")
            item.checked = true
            item.closeSensor()
            compare([item.checked, calls], [false, [false]])
        }

        function test_rgbdIsSeenOnlyWhileItsStreamsRun() {
            open()
            control("rgbdButton").checked = true
            tryVerify(function() { return placed() === 1 })
            compare(viewNamed("rgbdView").visible, false)
            device.rgbd.enable = true
            compare(viewNamed("rgbdView").visible, true)
            device.rgbd.enable = false
            compare(viewNamed("rgbdView").visible, false)
        }

        function test_rgbdIsSeenWhereAModelIsMissing_data() {
            return [{ tag: "rgb" }, { tag: "tof" }, { tag: "rgbd" }]
        }

        function test_rgbdIsSeenWhereAModelIsMissing(row) {
            openWithout([row.tag])
            compare(control("rgbdButton").enabled, false)
            control("rgbdButton").checked = true
            tryVerify(function() { return placed() === 1 })
            compare(viewNamed("rgbdView").visible, true)
        }

        function test_savingTellsWhere_data() {
            return [
                { tag: "stereoView", saved: "stereo" },
                { tag: "rgbView", saved: "rgb" },
                { tag: "tofView", saved: "tof" },
                { tag: "irView", saved: "tofIr" },
                { tag: "sgbmView", saved: "sgbm" }
            ]
        }

        function test_savingTellsWhere(row) {
            open()
            turnOn(7)
            const item = viewNamed(row.tag)
            compare(item.showSaveImageButton, true)
            inWindow(item)
            item.saveImage()
            compare(device.callsTo("saveImages"), ["saveImages(" + row.saved + ")"])
            compare(item.path, "/captures/" + row.saved)
            compare(item.imgPopup.imgText.text, "Save image to: /captures/" + row.saved)
            tryCompare(item.imgPopup, "opened", true)
            item.imgPopup.close()
            tryCompare(item.imgPopup, "visible", false)
            item.imgPressAndHold()
            compare(device.callsTo("saveImages").length, 1)
            compare(item.imgPopup.imgText.text, "Save image to: /captures/" + row.saved)
            tryCompare(item.imgPopup, "opened", true)
        }

        function test_theSecondColourViewIsToldApart() {
            open(function(fake) {
                fake.rgb.image = frames.make(1920, 1080)
                fake.rgb.image2 = frames.make(640, 480)
                fake.rgb.dataFrameRate = 30
                fake.rgb.dataFrameRate2 = 15
            })
            switchOn("rgbButton", "rgb2Button")
            tryVerify(function() { return placed() === 2 })
            const item = viewNamed("rgb2View")
            compare(item.rgbName, "[RGB2]")
            compare(item.showSaveImageButton, false)
            compare(findChild(item, "imgBtn").visible, false)
            compare(findChild(viewNamed("rgbView"), "imgBtn").visible, true)
            compare(findChild(viewNamed("rgbView"), "infoLabel").text, "[RGB]  1920x1080@30fps")
            compare(findChild(item, "infoLabel").text, "[RGB2]  640x480@15fps")
            compare(item.rgbPainter.source, device.rgb.image2)
            device.rgb.dataFrameRate2 = 20
            compare(findChild(item, "infoLabel").text, "[RGB2]  640x480@20fps")
        }

        function test_onlySlamRecordsItsPath() {
            open();
            ["imuView", "stereoView", "rgbView", "rgb2View", "rgbdView", "tofView", "irView", "sgbmView", "tof3DView",
                "eyetrackingView", "slamView"].forEach(function(name) {
                compare(viewNamed(name).showPathButton, name === "slamView", name)
                compare(viewNamed(name).showSaveImageButton,
                        ["stereoView", "rgbView", "tofView", "irView", "sgbmView"].indexOf(name) >= 0, name)
            })
        }

        function test_aViewThatHasLeftTheStripIsNotMaximized() {
            open()
            turnOn(3)
            bigLayout()
            const stereo = viewNamed("stereoView")
            control("stereoButton").checked = false
            tryVerify(function() { return placed() === 2 })
            // Its index is now that of another view.
            compare(stereo.modelIndex, 0)
            content.maximize(stereo)
            compare(names(content.uniqueModel), ["imuView"])
            compare(names(content.sideModel), ["rgbView"])
        }

        function test_maximizingMayBeLate() {
            open()
            turnOn(2)
            viewNamed("stereoView").maximize()
            control("stereoButton").checked = false
            tryVerify(function() { return names(content.uniqueModel)[0] === "imuView" })
            wait(100)
            compare(names(content.uniqueModel), ["imuView"])
            compare(content.sideModel.count, 0)
        }
    }
}
