SELECT c.name, c.region, SUM(o.total) AS revenue,
       COUNT(*) AS orders
  FROM customer c
  JOIN orders o ON o.customer = c.id
 WHERE o.placed >= DATE '2020-01-01'
   AND o.status IN ('paid', 'shipped')
 GROUP BY c.name, c.region
HAVING SUM(o.total) > 1000
 ORDER BY revenue DESC
 LIMIT 20;
