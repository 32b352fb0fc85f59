.pragma library

// Packed vertices of an array of points that grows at its end and loses points from its front. They are kept
// from one drawing to the next, so that only what came since is converted.
class VertexCache {
    constructor() {
        this.source = null
        this.vertices = new Float32Array(0)
        this.count = 0
        this.dropped = 0
    }

    // To be told of each point that leaves the front of the array.
    drop() {
        ++this.dropped
    }

    // Three floats a point, for all points. Holds until the next call.
    verticesOf(points) {
        const kept = points === this.source ? this.keep(points) : 0
        this.reserve(3 * points.length)
        const vertices = this.vertices
        for (let i = kept, at = 3 * kept; i < points.length; ++i) {
            const point = points[i]
            vertices[at++] = point.x
            vertices[at++] = point.y
            vertices[at++] = point.z
        }
        this.source = points
        this.count = points.length
        this.dropped = 0
        return vertices.subarray(0, 3 * points.length)
    }

    // Moves the vertices that still hold to the front and answers how many they are.
    keep(points) {
        const kept = this.count - this.dropped
        if (kept <= 0 || kept > points.length || !this.matches(points[0], this.dropped)
                || !this.matches(points[kept - 1], this.count - 1))
            return 0
        if (this.dropped > 0)
            this.vertices.copyWithin(0, 3 * this.dropped, 3 * this.count)
        return kept
    }

    matches(point, index) {
        const vertices = this.vertices
        return Object.is(vertices[3 * index], point.x) && Object.is(vertices[3 * index + 1], point.y)
                && Object.is(vertices[3 * index + 2], point.z)
    }

    reserve(length) {
        if (length <= this.vertices.length)
            return
        const larger = new Float32Array(Math.max(length, 2 * this.vertices.length))
        larger.set(this.vertices)
        this.vertices = larger
    }
}

function createCache() {
    return new VertexCache()
}
