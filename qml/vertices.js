.pragma library

// What a path is drawn from: packed vertices of all its points, and the indices of those that shape it. Both are
// kept from one drawing to the next, so that only what came since is worked on.

// A point that is changed in its place is noticed in paths up to this length.
const mostComparedPoints = 500

// Chooses the points of a growing line that can't be left out: each other one lies within twice the tolerance of
// the line through those. (Reumann and Witkam's strip, which also ends where the line turns back.)
class Thinning {
    constructor(tolerance) {
        this.tolerance = tolerance
        this.clear()
    }

    clear() {
        this.kept = []
        this.end = 0
        this.first = 0
    }

    add(x, y, z) {
        const index = this.end++
        if (this.kept.length === 0)
            this.keep(index, x, y, z)
        else if (!this.fits(x, y, z)) {
            this.keep(index - 1, this.x, this.y, this.z)
            // Only what isn't a number still doesn't fit.
            if (!this.fits(x, y, z))
                this.keep(index, x, y, z)
        }
        this.x = x
        this.y = y
        this.z = z
    }

    // Begins a strip.
    keep(index, x, y, z) {
        if (this.kept.length === 0 || this.kept[this.kept.length - 1] !== index)
            this.kept.push(index)
        this.startX = x
        this.startY = y
        this.startZ = z
        this.reach = 0
    }

    fits(x, y, z) {
        const dx = x - this.startX, dy = y - this.startY, dz = z - this.startZ
        const square = dx * dx + dy * dy + dz * dz
        const tolerance = this.tolerance
        if (!isFinite(square))
            return false
        if (this.reach === 0) {
            if (square > tolerance * tolerance)
                this.aim(dx, dy, dz, Math.sqrt(square))
            return true
        }
        const along = dx * this.aimX + dy * this.aimY + dz * this.aimZ
        if (along < this.reach - tolerance || square - along * along > tolerance * tolerance)
            return false
        this.reach = Math.max(this.reach, along)
        return true
    }

    aim(dx, dy, dz, length) {
        this.aimX = dx / length
        this.aimY = dy / length
        this.aimZ = dz / length
        this.reach = length
    }

    // Forgets points from the front; what is left begins at the oldest that still is.
    drop(count) {
        this.first += count
        while (this.kept.length > 1 && this.kept[1] <= this.first)
            this.kept.shift()
        if (this.kept.length > 0 && this.kept[0] < this.first)
            this.kept[0] = this.first
    }

    // The points that were kept, and the newest.
    chosen() {
        const last = this.end - 1
        const open = this.kept.length > 0 && this.kept[this.kept.length - 1] !== last
        const indices = new Uint32Array(this.kept.length + (open ? 1 : 0))
        for (let i = 0; i < this.kept.length; ++i)
            indices[i] = this.kept[i] - this.first
        if (open)
            indices[this.kept.length] = last - this.first
        return indices
    }
}

class PathCache {
    constructor(tolerance) {
        this.source = null
        this.vertices = new Float32Array(0)
        this.count = 0
        this.dropped = 0
        this.thinning = new Thinning(tolerance)
        this.indices = this.thinning.chosen()
    }

    // To be told of each point that leaves the front of the array.
    drop() {
        ++this.dropped
    }

    // Three floats a point, for all points. Holds until the next call.
    verticesOf(points) {
        this.update(points)
        return this.vertices.subarray(0, 3 * points.length)
    }

    // The points to draw, in their order.
    indicesOf(points) {
        this.update(points)
        return this.indices
    }

    update(points) {
        const kept = points === this.source ? this.keep(points) : 0
        if (kept === this.count && kept === points.length && this.dropped === 0)
            return
        if (kept > 0)
            this.thinning.drop(this.dropped)
        else
            this.thinning.clear()
        this.convert(points, kept)
        this.indices = this.thinning.chosen()
        this.source = points
        this.count = points.length
        this.dropped = 0
    }

    // Moves the vertices that still hold to the front and answers how many they are.
    keep(points) {
        const kept = this.count - this.dropped
        if (kept <= 0 || kept > points.length)
            return 0
        // Looking at each point of a long path would cost more than all the rest.
        const step = kept <= mostComparedPoints ? 1 : kept - 1
        for (let i = 0; i < kept; i += step) {
            if (!this.matches(points[i], this.dropped + i))
                return 0
        }
        if (this.dropped > 0)
            this.vertices.copyWithin(0, 3 * this.dropped, 3 * this.count)
        return kept
    }

    matches(point, index) {
        const vertices = this.vertices
        return Object.is(vertices[3 * index], point.x) && Object.is(vertices[3 * index + 1], point.y)
                && Object.is(vertices[3 * index + 2], point.z)
    }

    convert(points, from) {
        this.reserve(3 * points.length)
        const vertices = this.vertices
        for (let i = from, at = 3 * from; i < points.length; ++i) {
            const point = points[i]
            const x = point.x, y = point.y, z = point.z
            vertices[at++] = x
            vertices[at++] = y
            vertices[at++] = z
            this.thinning.add(x, y, z)
        }
    }

    reserve(length) {
        if (length <= this.vertices.length)
            return
        const larger = new Float32Array(Math.max(length, 2 * this.vertices.length))
        larger.set(this.vertices)
        this.vertices = larger
    }
}

function createPathCache(tolerance) {
    return new PathCache(tolerance)
}
