p = { (function() while true do end end)(), { 1 1 'constant table overflow' } }
